#include "workbench_routes.h"

#include <cstdlib>

#include "embedded_files.h"

namespace ispdsp::tools::cfg::serve {

using nlohmann::json;

namespace {

const char* contentTypeOf(std::string_view name) {
    if (name.ends_with(".html")) return "text/html; charset=utf-8";
    if (name.ends_with(".js")) return "text/javascript; charset=utf-8";
    if (name.ends_with(".css")) return "text/css; charset=utf-8";
    return "application/octet-stream";
}

void refuse(httplib::Response& res, int status, const std::string& why) {
    res.status = status;
    res.set_content(json{{"error", why}}.dump(), "application/json");
}

void reply(httplib::Response& res, const json& body) {
    if (body.contains("error")) res.status = 400;
    res.set_content(body.dump(), "application/json");
}

// A query value as a count; nothing when absent or not a plain number.
std::optional<size_t> indexParam(const httplib::Request& req, const char* key) {
    if (!req.has_param(key)) return std::nullopt;
    const std::string v = req.get_param_value(key);
    if (v.empty() || v.size() > 6 || v.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
    return static_cast<size_t>(std::stoul(v));
}

std::optional<GainControl> controlParams(const httplib::Request& req) {
    const auto start = indexParam(req, "start"), end = indexParam(req, "end");
    if (!start || !end || !req.has_param("coef")) return std::nullopt;
    char* stop = nullptr;
    const std::string coef = req.get_param_value("coef");
    const float c = std::strtof(coef.c_str(), &stop);
    if (coef.empty() || *stop != '\0') return std::nullopt;
    return GainControl{static_cast<int>(*start), static_cast<int>(*end), c};
}

std::optional<json> jsonBody(const httplib::Request& req) {
    json body = json::parse(req.body, nullptr, false);
    if (body.is_discarded() || !body.is_object()) return std::nullopt;
    return body;
}

}  // namespace

void addWorkbenchRoutes(httplib::Server& server, Workbench& workbench, const AccessGuard& guard, std::mutex& lock) {
    server.set_payload_max_length(kMaxRequestBody);
    server.set_pre_routing_handler([&guard](const httplib::Request& req, httplib::Response& res) {
        if (!guard.hostAllowed(req.get_header_value("Host"))) {
            refuse(res, 403, "this workbench answers only to http://" + guard.hostPort() + "/");
            return httplib::Server::HandlerResponse::Handled;
        }
        if (req.path.rfind("/api/", 0) == 0) {
            const std::string token = req.has_header("X-Workbench-Token") ? req.get_header_value("X-Workbench-Token")
                                                                          : req.get_param_value("token");
            if (!guard.tokenMatches(token)) {
                refuse(res, 401, "the request needs this run's token (open the address the workbench printed)");
                return httplib::Server::HandlerResponse::Handled;
            }
        }
        return httplib::Server::HandlerResponse::Unhandled;
    });

    for (const EmbeddedFile& file : embeddedFiles()) {
        const std::string route = file.name == "index.html" ? "/" : "/" + std::string(file.name);
        server.Get(route, [file](const httplib::Request&, httplib::Response& res) {
            res.set_content(std::string(file.bytes), contentTypeOf(file.name));
            res.set_header("Content-Security-Policy", "default-src 'self'; img-src 'self' data:; style-src 'self'");
        });
    }

    // Every handler below runs under the one lock: the session is not thread-safe.
    const auto locked = [&lock](auto handler) {
        return [&lock, handler](const httplib::Request& req, httplib::Response& res) {
            const std::lock_guard<std::mutex> hold(lock);
            try {
                handler(req, res);
            } catch (const nlohmann::json::exception&) {  // a body field of the wrong kind
                refuse(res, 400, "a request field has the wrong type");
            }
        };
    };
    server.Get("/api/overview", locked([&](const httplib::Request&, httplib::Response& res) {
                   reply(res, workbench.overview());
               }));
    server.Get("/api/states", locked([&](const httplib::Request&, httplib::Response& res) {
                   reply(res, workbench.stateMap());
               }));
    server.Get("/api/table", locked([&](const httplib::Request& req, httplib::Response& res) {
                   const auto i = indexParam(req, "i");
                   reply(res, i ? workbench.table(*i) : json{{"error", "which table? (i=)"}});
               }));
    server.Get("/api/plot.svg", locked([&](const httplib::Request& req, httplib::Response& res) {
                   const auto i = indexParam(req, "i");
                   const std::optional<std::string> svg = i ? workbench.plot(*i) : std::nullopt;
                   if (!svg) return refuse(res, 404, "no such table");
                   res.set_content(*svg, "image/svg+xml");
               }));
    server.Get("/api/blend", locked([&](const httplib::Request& req, httplib::Response& res) {
                   const auto i = indexParam(req, "i");
                   const auto control = controlParams(req);
                   if (!i || !control) return refuse(res, 400, "needs i, start, end and coef");
                   reply(res, workbench.blend(*i, *control));
               }));
    server.Get("/api/pair", locked([&](const httplib::Request& req, httplib::Response& res) {
                   const auto colour = indexParam(req, "colour"), mono = indexParam(req, "mono");
                   const auto control = controlParams(req);
                   if (!colour || !mono || !control) return refuse(res, 400, "needs colour, mono, start, end and coef");
                   reply(res, workbench.pair(*colour, req.get_param_value("source"), *mono, *control));
               }));
    server.Post("/api/edit", locked([&](const httplib::Request& req, httplib::Response& res) {
                    const auto body = jsonBody(req);
                    if (!body) return refuse(res, 400, "the body must be a JSON object");
                    reply(res, workbench.edit(body->value("table", SIZE_MAX), body->value("field", SIZE_MAX),
                                              body->value("step", size_t{0}), body->value("text", std::string()),
                                              body->value("apply", false)));
                }));
    server.Post("/api/compare", locked([&](const httplib::Request& req, httplib::Response& res) {
                    const auto body = jsonBody(req);
                    if (!body) return refuse(res, 400, "the body must be a JSON object");
                    reply(res, workbench.compare(body->value("name", std::string()), body->value("table", size_t{0})));
                }));
    // Runs the simulator (seconds, under the lock: the run needs the tables to stay as they are).
    server.Post("/api/simulate", locked([&](const httplib::Request& req, httplib::Response& res) {
                    const auto body = jsonBody(req);
                    if (!body) return refuse(res, 400, "the body must be a JSON object");
                    reply(res, workbench.simulate(body->value("scenario", std::string()), body->value("stage", std::string()),
                                                  body->value("field", std::string())));
                }));
    server.Post("/api/save", locked([&](const httplib::Request& req, httplib::Response& res) {
                    const auto body = jsonBody(req);
                    if (!body) return refuse(res, 400, "the body must be a JSON object");
                    reply(res, workbench.save(body->value("name", std::string()), body->value("replace", false)));
                }));
}

}  // namespace ispdsp::tools::cfg::serve
