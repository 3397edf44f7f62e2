// A host whose memory service relies on a static object, as a C++ framework's
// allocator often does: OSA_memUFree looks each block up in a static ledger.
// At process exit the ledger's destructor runs before the library's unload
// code, so the library must not call OSA_* from there. The program creates a
// pipe twice with the registration file in place (ISPDSP_ROOT, laid out by
// scripts/prepare-sandbox.sh), deletes it, checks what the library still
// holds, and exits normally.
//
// Exit status 0; 1 when a check failed; 3 when a block was freed after the
// ledger's destruction (seen in OSA_memUFree itself).
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <set>

#include "ispdsp/ispdsp.h"
#include "ispdsp_host/host.h"

namespace {

bool g_ledgerAlive = false;  // trivially destructible: still readable after the ledger is gone

struct Ledger {
    std::set<void*> live;
    Ledger() { g_ledgerAlive = true; }
    ~Ledger() { g_ledgerAlive = false; }
} g_ledger;

void* remember(void* block) {
    if (block != nullptr) g_ledger.live.insert(block);
    return block;
}

Int32 noDsp(DRV_dspIspCfgOpsCtrl*, Ptr) { return 0; }
void quiet(void*, int32_t, int32_t, const char*) {}

int fail(const char* what) {
    std::fprintf(stderr, "static_free_host: %s\n", what);
    return 1;
}

}  // namespace

// Memory services of this host; the files and the log come from libispdsp_host.
extern "C" {
Ptr OSA_memUAllocAlign(Uint32 size, Uint32) { return remember(std::malloc(size + 1)); }
Ptr OSA_memUCallocAlign(Uint32 size, Uint32) { return remember(std::calloc(size + 1, 1)); }
Int32 OSA_memUFree(Ptr block) {
    if (!g_ledgerAlive) {
        static const char kMessage[] = "static_free_host: OSA_memUFree called after the host's statics were destroyed\n";
        (void)!write(2, kMessage, sizeof kMessage - 1);
        _exit(3);
    }
    if (block != nullptr && g_ledger.live.erase(block) == 0) std::abort();  // not a block of ours
    std::free(block);
    return 0;
}
}

int main() {
    ispdsp_host_set_log_sink(quiet, nullptr);
    for (int round = 0; round < 2; ++round) {
        DRV_ispXCreateParams create{};
        create.aewPipeId = 1;
        create.ispNum = 1;
        create.ispIds[0] = 1;
        create.dspOps.OpGetDspConfig = noDsp;
        create.dspOps.OpSetDspConfig = noDsp;
        DRV_ispOpsParams ops{};
        if (DRV_dspIspCreateX(&create, &ops) != 0) return fail("creation failed (is ISPDSP_ROOT prepared?)");
        if (ops.OpDelete(&ops) != 0) return fail("deletion failed");
    }
    // Left: the registration file's zoom list and register pairs, those of the
    // first creation released when the second replaced them.
    if (g_ledger.live.size() != 2) return fail("the library should hold exactly the two registration arrays");
    return 0;
}
