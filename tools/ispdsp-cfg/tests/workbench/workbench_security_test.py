"""The workbench's guard as plain HTTP requests: the Host header, the token, names that would
leave the start folder (plain, encoded, absolute, through a symbolic link), files that were
there before, the body limit, and a clean stop on SIGINT. Usage: CFG SAMPLE_BIN"""
import http.client
import json
import os
import sys

from workbench_run import Workbench

cfg, sample = sys.argv[1], sys.argv[2]
failures = []


def expect(what, condition):
    print(("ok   " if condition else "FAIL ") + what)
    if not condition:
        failures.append(what)


def request(wb, method, path, body=None, host=None, token=True):
    conn = http.client.HTTPConnection(wb.host_port, timeout=10)
    conn.putrequest(method, path, skip_host=True, skip_accept_encoding=True)
    conn.putheader("Host", host or wb.host_port)
    if token:
        conn.putheader("X-Workbench-Token", wb.token if token is True else token)
    data = json.dumps(body).encode() if isinstance(body, dict) else body
    if data is not None:
        conn.putheader("Content-Type", "application/json")
        conn.putheader("Content-Length", str(len(data)))
    conn.endheaders(data)
    res = conn.getresponse()
    return res.status, res.read().decode(errors="replace")


sample_bytes = open(sample, "rb").read()
wb = Workbench(cfg, sample)
port = wb.host_port.split(":")[1]
expect("the page answers on the printed address", request(wb, "GET", "/", token=False)[0] == 200)
for host in ["evil.example:" + port, "localhost:" + port, "127.0.0.1", ""]:
    expect("Host %r is refused" % host, request(wb, "GET", "/", host=host or " ")[0] in (400, 403))
expect("no token: refused", request(wb, "GET", "/api/overview", token=False)[0] == 401)
expect("a wrong token: refused", request(wb, "GET", "/api/overview", token="0" * 32)[0] == 401)
expect("the token in the query: served", request(wb, "GET", "/api/overview?token=" + wb.token, token=False)[0] == 200)
expect("a save without the token: refused", request(wb, "POST", "/api/save", {"name": "x"}, token=False)[0] == 401)
for path in ["/../../etc/passwd", "/%2e%2e/%2e%2e/etc/passwd", "/api/..%2f..%2fetc%2fpasswd", "//etc/passwd"]:
    status, body = request(wb, "GET", path)
    expect("path %s is not served" % path, status != 200 and "root:" not in body)

open(wb.path("before.json"), "w").write("{}")
os.symlink("/etc", wb.path("link"))
os.symlink(wb.path("before.json"), wb.path("linked.json"))
for name in ["../escape", "..", "%2e%2e%2fescape", "/tmp/escape", "sub/escape", ".hidden", "link/passwd",
             "linked", "before"]:
    status, body = request(wb, "POST", "/api/save", {"name": name})
    expect("save as %r is refused" % name, status == 400 and "error" in json.loads(body))
for name in ["../../etc/passwd", "/etc/passwd", "%2e%2e%2fetc%2fpasswd", "before.json", "link"]:
    status, body = request(wb, "POST", "/api/compare", {"name": name})
    expect("compare with %r is refused" % name, status == 400 and "root:" not in body)
for name in ["../../etc/passwd", "/etc/passwd", "%2e%2e%2fgain_sweep", "gain_sweep.json"]:
    status, body = request(wb, "POST", "/api/simulate", {"scenario": name})
    expect("simulate %r is refused" % name, status == 400 and "root:" not in body)
expect("a simulation without the token: refused",
       request(wb, "POST", "/api/simulate", {"scenario": "gain_sweep"}, token=False)[0] == 401)
expect("nothing escaped the folder", not os.path.exists(os.path.join(os.path.dirname(wb.folder.name), "escape")))
expect("a body over the limit: 413", request(wb, "POST", "/api/edit", b"{" + b" " * 100000 + b"}")[0] == 413)
expect("a body field of the wrong type: 400", request(wb, "POST", "/api/edit", {"table": "x"})[0] == 400)

expect("a new name is saved", request(wb, "POST", "/api/save", {"name": "tuned"})[0] == 200)
expect("saving over it needs replace", request(wb, "POST", "/api/save", {"name": "tuned"})[0] == 400)
expect("with replace it is saved", request(wb, "POST", "/api/save", {"name": "tuned", "replace": True})[0] == 200)
expect("the input is unchanged", open(sample, "rb").read() == sample_bytes)
status, err = wb.stop()
expect("SIGINT stops it cleanly (exit %d)" % status, status == 0 and "stopped" in err)
sys.exit(1 if failures else 0)
