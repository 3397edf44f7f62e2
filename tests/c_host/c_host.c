/* A host written in C11 against the public headers only: it prepares the
 * device files in a private root, creates a colour and a mono pipe, links
 * them, runs frames through the operation table, tunes through the console,
 * stops and deletes both pipes, and checks what the driver did. It runs the
 * whole session twice and expects the second to end with the memory of the
 * first (the registration data stays with the library between sessions).
 * Exit status 0 when every check passed. */
#define _POSIX_C_SOURCE 200809L

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ispdsp/ispdsp.h"
#include "ispdsp_host/host.h"

static int g_failures = 0;

#define CHECK(cond)                                                          \
    do {                                                                     \
        if (!(cond)) {                                                       \
            fprintf(stderr, "c_host: %s:%d: check failed: %s\n", __FILE__, \
                    __LINE__, #cond);                                        \
            ++g_failures;                                                    \
        }                                                                    \
    } while (0)

/* ---- Device files in a private root ---- */

static char g_root[256];

static void devicePath(const char* path, char* out, size_t size) {
    CHECK(ispdsp_host_resolve_path(path, out, size) == 0);
}

static int writeDeviceFile(const char* path, const void* data, size_t size) {
    char hostPath[512];
    FILE* file;
    devicePath(path, hostPath, sizeof(hostPath));
    file = fopen(hostPath, "wb");
    if (file == NULL) return -1;
    if (fwrite(data, 1, size, file) != size) {
        fclose(file);
        return -1;
    }
    return fclose(file);
}

static void makeDeviceDir(const char* path) {
    char hostPath[512];
    devicePath(path, hostPath, sizeof(hostPath));
    mkdir(hostPath, 0755);
}

static void removeDeviceFile(const char* path) {
    char hostPath[512];
    devicePath(path, hostPath, sizeof(hostPath));
    unlink(hostPath);
}

static void removeDeviceDir(const char* path) {
    char hostPath[512];
    devicePath(path, hostPath, sizeof(hostPath));
    rmdir(hostPath);
}

static void putU32(unsigned char* at, Uint32 value) {
    at[0] = (unsigned char)(value & 0xFF);
    at[1] = (unsigned char)((value >> 8) & 0xFF);
    at[2] = (unsigned char)((value >> 16) & 0xFF);
    at[3] = (unsigned char)((value >> 24) & 0xFF);
}

static Uint32 getU32(const unsigned char* at) {
    return (Uint32)at[0] | ((Uint32)at[1] << 8) | ((Uint32)at[2] << 16) | ((Uint32)at[3] << 24);
}

/* A table whose sixteen fusion records rise with the gain step. */
static void fillTable(CFG_DspIspCfgParam* table, int variant) {
    int step;
    int point;
    memset(table, 0, sizeof(*table));
    table->ispFusionFlag = 1;
    for (step = 0; step < FUSION_GAIN_STEPS; ++step) {
        CFG_DSP_FusionV2722* r = &table->ispFusionParam[step];
        r->ep_delta = (Uint16)(100 + 20 * step + variant);
        r->fusion_hf_ratio = (Uint16)(128 + step);
        r->fwmin_wt = 64;
        r->nir_k = (Uint16)(32 + step);
        r->hf_zoom = (Uint16)(512 + 8 * step);
        r->dark_inner = (Uint16)(1000 + 100 * step);
        r->high_lum_thr = (Int16)(-10 - step);
        r->fwmin_limit = 10;
        r->fwmax_limit = 200;
        r->nir_a = 1;
        r->vis_b = -1;
        r->nir_min = 16;
        r->uv_coef = (Uint8)(32 + variant);
        r->uv_diff_thr = 8;
        r->uv_diff_max = 200;
        r->uv_vlight_max = 240;
        r->uv_sat_limit = 20;
        r->uv_rsmooth = 4;
        r->uv_gsmooth = 4;
        r->uv_bsmooth = 4;
        r->uv_wmax = 255;
        r->uv_w = 100;
        for (point = 0; point < FUSION_NIR_POINTS; ++point) r->w_nir[point] = (Uint8)((point / 2 + step + variant) & 0xFF);
    }
}

/* /var/tmp/dsp_isp_para.bin with the day and the night table of the base scene. */
static int writeParameterFile(void) {
    enum { kTables = 2 };
    const Uint32 blockSize = kTables * CFG_TABLE_ENTRY_SIZE;
    const size_t fileSize = ISPDSP_PARAM_FILE_OVERHEAD + blockSize;
    unsigned char* file = (unsigned char*)calloc(1, fileSize);
    CFG_DspIspCfgParam* table = (CFG_DspIspCfgParam*)malloc(sizeof(CFG_DspIspCfgParam));
    Float32 version = ISPDSP_PARAM_FILE_VERSION;
    Uint32 versionBits;
    Uint32 checksum = 0;
    size_t i;
    int t;
    int result;
    if (file == NULL || table == NULL) {
        free(file);
        free(table);
        return -1;
    }
    memcpy(&versionBits, &version, sizeof(versionBits));
    putU32(file, versionBits);
    memcpy(file + 4, "2024-01-01 00:00:00", 19);
    memcpy(file + 40, "c_host", 6);
    memcpy(file + 72, "c_host product", 14);
    putU32(file + 104, blockSize);
    for (t = 0; t < kTables; ++t) {
        unsigned char* entry = file + ISPDSP_PARAM_FILE_BLOCK_OFFSET + (size_t)t * CFG_TABLE_ENTRY_SIZE;
        putU32(entry, (Uint32)(t == 0 ? PARAM_MULTICOLOR : PARAM_BLACKWHITE));
        fillTable(table, t * 3);
        memcpy(entry + 4, table, sizeof(*table));
    }
    for (i = 0; i < 26; ++i) checksum ^= getU32(file + 4 * i);
    for (i = 0; i < blockSize / 4; ++i) checksum ^= getU32(file + ISPDSP_PARAM_FILE_BLOCK_OFFSET + 4 * i);
    putU32(file + ISPDSP_PARAM_FILE_BLOCK_OFFSET + blockSize, checksum);
    result = writeDeviceFile("/var/tmp/dsp_isp_para.bin", file, fileSize);
    free(table);
    free(file);
    return result;
}

static int writeRegistrationFile(void) {
    static const char text[] =
        "ZOOMNUM:3 REGNUM:2\n"
        "ZOOM:100\n0x10 0x1\n0x11 0x2\nTFORM: 1 0 0\n"
        "ZOOM:200\n0x10 0x3\n0x11 0x4\nTFORM: 1 0 0\n"
        "ZOOM:300\n0x10 0x5\n0x11 0x6\nTFORM: 1 0 0\n";
    return writeDeviceFile("/var/tmp/calibration.txt", text, sizeof(text) - 1);
}

/* ---- Host callbacks ---- */

static unsigned g_setsByType[DSP_AEW_CFG_TYPE_SADE + 1];
static unsigned g_gets;
static const void* g_lastCurve;
static unsigned g_pswitchLines;
static unsigned g_logLines;

static Int32 onSetDspConfig(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    const DSP_AEW_CFG_S* msg = (const DSP_AEW_CFG_S*)message;
    CHECK(ctrl != NULL && msg != NULL);
    if (msg->u32Type <= DSP_AEW_CFG_TYPE_SADE) ++g_setsByType[msg->u32Type];
    if (msg->u32Type == DSP_AEW_CFG_TYPE_FUSION) g_lastCurve = msg->dspArgs.stFusionArgs.fusion_param_v2_7_22.w_nir;
    if (msg->u32Type == DSP_AEW_CFG_TYPE_CAL)
        CHECK(strcmp(msg->dspArgs.irCalPramArgs.calParam.cfg_path, "/var/tmp/calibration.txt") == 0);
    return 0;
}

static Int32 onGetDspConfig(DRV_dspIspCfgOpsCtrl* ctrl, Ptr message) {
    (void)ctrl;
    (void)message;
    ++g_gets;
    return 0;
}

typedef struct {
    unsigned flagCalls;
    Uint32 lastFlag;
} PipeContext;

static Int32 onSetDrvFlag(const DRV_ispSetDrvFlagParam* param) {
    PipeContext* context = (PipeContext*)param->privData;
    CHECK(param->cmdType == ISP_SET_FUSION);
    ++context->flagCalls;
    context->lastFlag = param->flag;
    return 0;
}

static void onLog(void* ctx, int32_t level, int32_t category, const char* text) {
    (void)ctx;
    (void)level;
    (void)category;
    ++g_logLines;
    if (strncmp(text, "[DSP_DRV] pswitch=", 18) == 0) ++g_pswitchLines;
}

/* ---- One session of two pipes ---- */

static void prepareCreate(DRV_ispXCreateParams* create, Uint32 pipeId, PipeContext* context) {
    Uint32 i;
    memset(create, 0, sizeof(*create));
    create->aewPipeId = pipeId;
    create->ispNum = 2;
    for (i = 0; i < 8; ++i) create->ispIds[i] = pipeId * 8 + i;
    create->OpSetDrvFlag = onSetDrvFlag;
    create->privData = context;
    create->dspOps.OpGetDspConfig = onGetDspConfig;
    create->dspOps.OpSetDspConfig = onSetDspConfig;
}

static void runSession(int session) {
    DRV_ispOpsParams* ops[2];
    DRV_ispXCreateParams create;
    PipeContext context[2];
    DRV_RefPipeParams ref;
    DRV_ispModuleResults results;
    DRV_ispCmdParam cmd;
    Ptr handle[2];
    char name[] = "ep_delta";
    char value[] = "321";
    char unknown[] = "no_such_command";
    int p;
    int frame;
    unsigned fusionCalls = 0;

    memset(context, 0, sizeof(context));
    memset(g_setsByType, 0, sizeof(g_setsByType));
    g_gets = 0;
    g_pswitchLines = 0;
    for (p = 0; p < 2; ++p) {
        ops[p] = (DRV_ispOpsParams*)calloc(1, sizeof(DRV_ispOpsParams));
        if (ops[p] == NULL) {
            CHECK(0);
            return;
        }
        prepareCreate(&create, (Uint32)(p + 1), &context[p]);
        CHECK(DRV_dspIspCreateX(&create, ops[p]) == 0);
        CHECK(ops[p]->ispXHndl != NULL && ops[p]->OpSetFusion != NULL);
        CHECK(((const Uint32*)ops[p]->hIsp)[7] == (Uint32)(p + 1) * 8 + 7);
        CHECK(ops[p]->OpGetXHndl(ops[p], &handle[p]) == 0 && handle[p] == ops[p]->ispXHndl);
        CHECK(((DRV_aewIspHandleDSP*)handle[p])->registerFlag == 1);
        CHECK(ops[p]->OpStart(ops[p]) == 0);
        CHECK(context[p].flagCalls == 1 && context[p].lastFlag == 1);
        ops[p]->runParam.dncMode = 1;
    }

    /* Pipe 1 is the colour pipe, pipe 2 the mono pipe. */
    memset(&ref, 0, sizeof(ref));
    ref.refXHndl = handle[1];
    ref.fusionType = DRV_ISP_FUSION_MONO;
    CHECK(ops[0]->OpSetRefPipeParams(ops[0], &ref) == 0);
    ref.refXHndl = handle[0];
    ref.fusionType = DRV_ISP_FUSION_COLOR;
    CHECK(ops[1]->OpSetRefPipeParams(ops[1], &ref) == 0);

    for (frame = 0; frame < 300; ++frame) {
        for (p = 0; p < 2; ++p) {
            Int32 changed = 0;
            Int32 result;
            DRV_ispRunParams* run = &ops[p]->runParam;
            run->gainInterParam.gainStartIndex = frame % 15;
            run->gainInterParam.gainEndIndex = frame % 15 + 1;
            run->gainInterParam.interCoff = (Float32)(frame % 4) / 4.0f;
            run->dncMode = (frame / 100) % 2 == 1 ? 0 : 1;
            run->ptzUpdateParam.zoom = 50 + (frame / 50) * 50;
            memset(&results, 0, sizeof(results));
            results.sensorStandbyParam.pSwitch = 1;
            CHECK(ops[p]->OpSetModuleResults(ops[p], &results) == 0);
            CHECK(ops[p]->OpInterGainFlags(ops[p]) == 0);
            CHECK(ops[p]->OpRefreshCfg(ops[p], &changed) == 0);
            result = ops[p]->OpSetFusion(ops[p]);
            /* The very first call combines with a pipe that has not calculated yet. */
            CHECK(result == 0 || (frame == 0 && p == 0));
            CHECK(g_lastCurve == ((DRV_aewIspHandleDSP*)handle[p])->w_nir2);
            ++fusionCalls;
        }
    }
    CHECK(g_setsByType[DSP_AEW_CFG_TYPE_FSSWITCH] == fusionCalls);
    CHECK(g_setsByType[DSP_AEW_CFG_TYPE_FUSION] == fusionCalls);
    CHECK(g_gets == fusionCalls);
    CHECK(g_pswitchLines == fusionCalls);
    /* Zooms 50..350 cross the three bands; the process sends the calibration once. */
    CHECK(g_setsByType[DSP_AEW_CFG_TYPE_IR] >= 3);
    CHECK(g_setsByType[DSP_AEW_CFG_TYPE_CAL] == (session == 0 ? 1u : 0u));

    /* Tuning: the value lands in both records of the current blend. */
    memset(&cmd, 0, sizeof(cmd));
    cmd.argp[0].pointer = name;
    cmd.argp[1].pointer = value;
    cmd.argc = 2;
    {
        const unsigned flagsBefore = context[0].flagCalls;
        const DRV_aewIspHandleDSP* instance = (const DRV_aewIspHandleDSP*)handle[0];
        const DRV_gainInterParam* gain = &ops[0]->runParam.gainInterParam;
        CHECK(ops[0]->OpSetDbgDspParam(ops[0], &cmd, 0) == 0);
        CHECK(context[0].flagCalls == flagsBefore + 1);
        CHECK(instance->dspCfgTables.curTable->ispFusionParam[gain->gainStartIndex].ep_delta == 321);
        CHECK(instance->dspCfgTables.curTable->ispFusionParam[gain->gainEndIndex].ep_delta == 321);
        CHECK(ops[0]->OpSetFusion(ops[0]) == 0);
        CHECK(instance->pstFusionParam.fusionParam.ep_delta == 321);
        cmd.argp[0].pointer = unknown;
        CHECK(ops[0]->OpSetDbgDspParam(ops[0], &cmd, 1) == -1);
    }

    for (p = 0; p < 2; ++p) {
        CHECK(ops[p]->OpStop(ops[p]) == 0);
        CHECK(context[p].lastFlag == 0);
        CHECK(ops[p]->OpDelete(ops[p]) == 0);
        CHECK(ops[p]->ispXHndl == NULL);
        free(ops[p]);
    }
}

int main(void) {
    const char* tmp = getenv("TMPDIR");
    ispdsp_host_mem_stats stats;
    uint64_t liveAfterFirst;
    int session;

    snprintf(g_root, sizeof(g_root), "%s/ispdsp_c_host_XXXXXX", tmp != NULL ? tmp : "/tmp");
    if (mkdtemp(g_root) == NULL) {
        perror("mkdtemp");
        return 2;
    }
    setenv("ISPDSP_ROOT", g_root, 1);
    ispdsp_host_set_log_sink(onLog, NULL);

    makeDeviceDir("/var");
    makeDeviceDir("/var/tmp");
    CHECK(writeParameterFile() == 0);
    CHECK(writeRegistrationFile() == 0);

    liveAfterFirst = 0;
    for (session = 0; session < 2; ++session) {
        runSession(session);
        ispdsp_host_get_mem_stats(&stats);
        if (session == 0) liveAfterFirst = stats.live_blocks;
        else CHECK(stats.live_blocks == liveAfterFirst);
    }
    CHECK(g_logLines > 0);

    ispdsp_host_set_log_sink(NULL, NULL);
    removeDeviceFile("/var/tmp/dsp_isp_para.bin");
    removeDeviceFile("/var/tmp/calibration.txt");
    removeDeviceDir("/var/tmp");
    removeDeviceDir("/var");
    rmdir(g_root);

    if (g_failures != 0) {
        fprintf(stderr, "c_host: %d check(s) failed\n", g_failures);
        return 1;
    }
    printf("c_host: all checks passed\n");
    return 0;
}
