/* A minimal host of the ispdsp driver library, in C11, built against an
 * installed copy (find_package(ispdsp) or pkg-config): the way a camera
 * framework uses it. It creates a colour pipe and a mono pipe, links them,
 * runs a few frames of the per-frame sequence and shuts both down.
 *
 * The driver reads its device files when a pipe is created:
 * /var/tmp/dsp_isp_para.bin (or /var/tmp/<pipe>/dsp_isp_para.bin) and
 * calibration.txt in /var/tmp/, /var/ or /mnt/mtd/. libispdsp_host, the
 * OSA_* layer linked here, looks them up under $ISPDSP_ROOT when it is set.
 *
 * Exit status 0 when every step succeeded. */
#include <stdio.h>
#include <string.h>

#include "ispdsp/ispdsp.h"
#include "ispdsp_host/host.h"

enum { kPipes = 2, kFrames = 8, kColour = 0, kMono = 1 };

/* What the host keeps per pipe; privData of the flag callback points here. */
typedef struct {
    const char* name;
    DRV_ispOpsParams ops; /* the operation table: owned by the host, filled by the driver */
    Ptr instance;
    Uint32 fusionFlag;    /* last ISP_SET_FUSION request: 1 run the fusion operation, 0 stop */
    unsigned flagCalls;
} Pipe;

static Pipe g_pipes[kPipes];
static unsigned g_messages[DSP_AEW_CFG_TYPE_SADE + 1];

/* The DSP transport. A real host hands the 4168-byte message to the DSP
 * before returning (the payload carries addresses that live only as long as
 * the instance); this one counts the messages by type. */
static Int32 setDspConfig(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    const DSP_AEW_CFG_S* cfg = (const DSP_AEW_CFG_S*)message;
    (void)ctrl;
    if (cfg->u32Type <= DSP_AEW_CFG_TYPE_SADE) ++g_messages[cfg->u32Type];
    return 0;
}

/* Reads the DSP's current parameters of the message's type back into it. */
static Int32 getDspConfig(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    (void)ctrl;
    (void)message;
    return 0;
}

/* The driver asks the host to run (1) or stop (0) its fusion operation. */
static Int32 setDrvFlag(const DRV_ispSetDrvFlagParam* param) {
    Pipe* pipe = (Pipe*)param->privData;
    if (param->cmdType == ISP_SET_FUSION) {
        pipe->fusionFlag = param->flag;
        ++pipe->flagCalls;
    }
    return 0;
}

static int createPipe(Pipe* pipe, const char* name, Uint32 pipeId) {
    DRV_ispXCreateParams create;
    memset(&create, 0, sizeof(create));
    create.aewPipeId = pipeId;
    create.ispNum = 1;
    create.ispIds[0] = pipeId;
    create.OpSetDrvFlag = setDrvFlag;
    create.privData = pipe;
    create.dspOps.OpGetDspConfig = getDspConfig;
    create.dspOps.OpSetDspConfig = setDspConfig;

    pipe->name = name;
    memset(&pipe->ops, 0, sizeof(pipe->ops));
    if (DRV_dspIspCreateX(&create, &pipe->ops) != 0) {
        fprintf(stderr, "consumer: creating the %s pipe failed (are the device files in place?)\n", name);
        return -1;
    }
    return pipe->ops.OpGetXHndl(&pipe->ops, &pipe->instance);
}

/* Each pipe is told the other pipe's instance and which kind that one is. */
static int linkPipes(Pipe* colour, Pipe* mono) {
    DRV_RefPipeParams ref;
    memset(&ref, 0, sizeof(ref));
    ref.refXHndl = mono->instance;
    ref.fusionType = DRV_ISP_FUSION_MONO;
    if (colour->ops.OpSetRefPipeParams(&colour->ops, &ref) != 0) return -1;
    ref.refXHndl = colour->instance;
    ref.fusionType = DRV_ISP_FUSION_COLOR;
    return mono->ops.OpSetRefPipeParams(&mono->ops, &ref);
}

/* One frame of one pipe, in the order a frame loop calls the slots. */
static int runFrame(Pipe* pipe, int frame) {
    DRV_ispOpsParams* ops = &pipe->ops;
    DRV_ispModuleResults results;
    Int32 changed = 0;

    ops->runParam.dncMode = 1;
    ops->runParam.gainInterParam.gainStartIndex = frame % (FUSION_GAIN_STEPS - 1);
    ops->runParam.gainInterParam.gainEndIndex = frame % (FUSION_GAIN_STEPS - 1) + 1;
    ops->runParam.gainInterParam.interCoff = 0.5f;
    ops->runParam.ptzUpdateParam.zoom = 1000;

    memset(&results, 0, sizeof(results));
    results.sensorStandbyParam.pSwitch = 1;
    if (ops->OpSetModuleResults(ops, &results) != 0) return -1;
    if (ops->OpInterGainFlags(ops) != 0) return -1;
    if (ops->OpRefreshCfg(ops, &changed) != 0) return -1;
    return ops->OpSetFusion(ops);
}

int main(void) {
    Pipe* colour = &g_pipes[kColour];
    Pipe* mono = &g_pipes[kMono];
    ispdsp_host_mem_stats memory;
    int frame;
    int p;

    if (createPipe(colour, "colour", 1) != 0 || createPipe(mono, "mono", 2) != 0) return 1;
    for (p = 0; p < kPipes; ++p) {
        if (g_pipes[p].ops.OpStart(&g_pipes[p].ops) != 0 || g_pipes[p].fusionFlag != 1) {
            fprintf(stderr, "consumer: starting the %s pipe failed\n", g_pipes[p].name);
            return 1;
        }
    }
    /* After every start: the driver forgets the reference pipe on OpStart. */
    if (linkPipes(colour, mono) != 0) {
        fprintf(stderr, "consumer: linking the pipes failed\n");
        return 1;
    }

    for (frame = 0; frame < kFrames; ++frame) {
        for (p = 0; p < kPipes; ++p) {
            /* The colour pipe's very first fusion has no calculated mono record yet. */
            const int mayFail = frame == 0 && p == kColour;
            if (runFrame(&g_pipes[p], frame) != 0 && !mayFail) {
                fprintf(stderr, "consumer: frame %d of the %s pipe failed\n", frame, g_pipes[p].name);
                return 1;
            }
        }
    }

    for (p = 0; p < kPipes; ++p) {
        if (g_pipes[p].ops.OpStop(&g_pipes[p].ops) != 0 || g_pipes[p].fusionFlag != 0 ||
            g_pipes[p].ops.OpDelete(&g_pipes[p].ops) != 0) {
            fprintf(stderr, "consumer: stopping the %s pipe failed\n", g_pipes[p].name);
            return 1;
        }
    }

    ispdsp_host_get_mem_stats(&memory);
    printf("consumer: %d pipes, %d frames: %u FUSION, %u FSSWITCH messages, %u flag calls; "
           "%llu blocks held by the library\n",
           kPipes, kFrames, g_messages[DSP_AEW_CFG_TYPE_FUSION], g_messages[DSP_AEW_CFG_TYPE_FSSWITCH],
           colour->flagCalls + mono->flagCalls, (unsigned long long)memory.live_blocks);
    if (g_messages[DSP_AEW_CFG_TYPE_FUSION] < (unsigned)(kPipes * kFrames - 1)) {
        fprintf(stderr, "consumer: too few FUSION messages\n");
        return 1;
    }
    return 0;
}
