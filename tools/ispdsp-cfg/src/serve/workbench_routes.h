// The workbench's HTTP face: the page's files, and the /api requests that read or change the
// session, behind the access guard (Host header on every request, token on every /api one).
#pragma once

#include <httplib.h>

#include <mutex>

#include "access_guard.h"
#include "workbench.h"

namespace ispdsp::tools::cfg::serve {

// Request bodies (an edit, a file name) are small; anything larger is refused with 413.
inline constexpr size_t kMaxRequestBody = 64 * 1024;

// Registers the guard and every route on `server`; `workbench` and `guard` must outlive it.
void addWorkbenchRoutes(httplib::Server& server, Workbench& workbench, const AccessGuard& guard, std::mutex& lock);

}  // namespace ispdsp::tools::cfg::serve
