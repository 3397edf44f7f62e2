"""One tuner's session in headless Chromium: open the sample, edit ep_delta of one gain step,
move the gain control and compare the shown blend with the library's own calculation, compare
with the sample, save, check the saved binary against `ispdsp-cfg build`, and simulate a
scenario on the edited tables as ispdsp-sim runs it on the saved ones. Writes a screenshot of
each view and the timings to OUT.
Usage: CFG SAMPLE_BIN LIBISPDSP LIBISPDSP_HOST OUT SIM. Exits 77 (skipped) without Chromium."""
import ctypes
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

cfg, sample, lib_path, host_path, out, sim = sys.argv[1:7]
chromium = shutil.which("chromium") or shutil.which("chromium-browser")
driver = shutil.which("chromedriver")
try:
    from selenium import webdriver
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import Select, WebDriverWait
except ImportError:
    chromium = None
if not chromium or not driver:
    print("SKIP: the browser test needs chromium, chromium-driver and python3-selenium")
    sys.exit(77)

from workbench_run import Workbench

os.makedirs(out, exist_ok=True)
STEP, EDITED = 3, 900


def library_blend(param_file, table_index, start, end, coef):
    """DRV_dspCalculateFusion on one table of a parameter file, through ctypes."""
    ctypes.CDLL(host_path, mode=ctypes.RTLD_GLOBAL)  # the OSA_* services the library expects
    lib = ctypes.CDLL(lib_path)
    data = open(param_file, "rb").read()
    header, entry, table, record, steps = 108, 8824, 4, 544, 16  # file layout: header + size word, type word
    first = header + table_index * entry + 4 + table  # the table's type word, then ispFusionFlag
    calc = ctypes.create_string_buffer(8728)  # DSP_FusionCalculateParam
    calc[4:4 + record * steps] = data[first:first + record * steps]
    gain = ctypes.create_string_buffer(64)  # DRV_gainInterParam
    ctypes.memmove(ctypes.addressof(gain) + 8, ctypes.byref(ctypes.c_float(coef)), 4)
    ctypes.memmove(ctypes.addressof(gain) + 12, ctypes.byref(ctypes.c_int32(start)), 4)
    ctypes.memmove(ctypes.addressof(gain) + 16, ctypes.byref(ctypes.c_int32(end)), 4)
    ctypes.memmove(ctypes.addressof(calc) + 8712, ctypes.byref(ctypes.c_void_p(ctypes.addressof(gain))), 8)
    curve = ctypes.create_string_buffer(511)
    result = ctypes.create_string_buffer(72)  # DSP_FusionV2722: the record at 8, its curve address at 48
    ctypes.memmove(ctypes.addressof(result) + 48, ctypes.byref(ctypes.c_void_p(ctypes.addressof(curve))), 8)
    assert lib.DRV_dspCalculateFusion(calc, result) == 0
    return int.from_bytes(result.raw[8:10], "little"), int.from_bytes(data[first + STEP * record:first + STEP * record + 2], "little")


def simulated(tuning, field):
    """[frame, pipe, value] of `field` in every FUSION message ispdsp-sim sends for gain_sweep."""
    scenario = os.path.join(os.path.dirname(sample), "scenarios", "gain_sweep.json")
    run = subprocess.run([sim, "--json", "--no-progress", "--quiet-log", "--tuning", tuning, scenario],
                         capture_output=True, text=True, check=True)
    records = [json.loads(line) for line in run.stdout.splitlines()]
    return [[r["frame"], {"color": "colour"}.get(r["pipe"], r["pipe"]), r["fields"][field]] for r in records
            if r["event"] == "message" and r["dir"] == "set" and r["stage"] == "FUSION"]


options = webdriver.ChromeOptions()
options.binary_location = chromium
profile = tempfile.mkdtemp(prefix="ispdsp-chromium-")
for flag in ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
             "--disable-background-networking", "--disable-component-update", "--disable-sync",
             "--user-data-dir=" + profile, "--window-size=1400,1000",
             # a headless page counts as in the background; its timers and fetches would be slowed
             "--disable-background-timer-throttling", "--disable-renderer-backgrounding",
             "--disable-backgrounding-occluded-windows"]:
    options.add_argument(flag)
wb = Workbench(cfg, sample)
browser = webdriver.Chrome(service=webdriver.ChromeService(driver) if hasattr(webdriver, "ChromeService")
                           else webdriver.chrome.service.Service(driver), options=options)
wait = WebDriverWait(browser, 20)
timings = {}
try:
    opened = time.monotonic()
    browser.get(wb.url)
    wait.until(lambda b: b.execute_script("return window.workbenchReadyMs !== undefined"))
    timings["usable after open (ms, navigation to ready, with the browser's first page start)"] = round((time.monotonic() - opened) * 1000)
    timings["navigation start to first view usable (ms)"] = round(
        browser.execute_script("return window.workbenchReadySinceNavigationMs"))
    timings["page script start to first view usable (ms)"] = round(browser.execute_script("return window.workbenchReadyMs"))
    wait.until(lambda b: b.execute_script("return window.workbenchLoadedMs !== undefined"))
    timings["page script start to every view filled (ms)"] = round(browser.execute_script("return window.workbenchLoadedMs"))
    browser.find_element(By.CSS_SELECTOR, "#state-map td.fallback").click()
    browser.execute_script("document.getElementById('state-why').scrollIntoView(false)")
    browser.save_screenshot(os.path.join(out, "1-table-set.png"))

    browser.find_element(By.ID, "tab-stages").click()
    browser.save_screenshot(os.path.join(out, "2-stage-records.png"))

    browser.find_element(By.ID, "tab-fusion").click()
    cell = browser.find_element(By.CSS_SELECTOR, "input[aria-label='ep_delta, gain step %d']" % STEP)
    for typed, note in [("abc", "not a number"), ("70000", "does not fit"), ("20000", "clamped to 16383")]:
        cell.clear()
        cell.send_keys(typed)
        wait.until(lambda b: note in (cell.get_attribute("title") or ""))
    cell.clear()
    cell.send_keys(str(EDITED), Keys.ENTER)
    wait.until(lambda b: "took fusion[%d].ep_delta = %d" % (STEP, EDITED) in b.find_element(By.ID, "status").text)

    for box, value in [("gain-start", STEP), ("gain-end", STEP + 1)]:
        field = browser.find_element(By.ID, box)
        field.clear()
        field.send_keys(str(value))
    slider = browser.find_element(By.ID, "gain-coef")
    latencies = []
    shown_for_control = "return window.workbenchBlendShown === control()"
    for _ in range(10):  # each arrow key is one move of the control
        slider.send_keys(Keys.ARROW_RIGHT)
        wait.until(lambda b: b.execute_script(shown_for_control))
        latencies.append(browser.execute_script("return window.workbenchRedrawMs"))
    timings["gain-control redraw (ms, median of 10 moves)"] = round(sorted(latencies)[5], 1)
    timings["gain-control redraw (ms, slowest of 10 moves)"] = round(max(latencies), 1)
    coef = float(slider.get_attribute("value"))
    shown = int(browser.execute_script(
        "return document.querySelector(\"#blend-values tr[data-field='ep_delta'] td.blended\").textContent"))
    browser.save_screenshot(os.path.join(out, "3-fusion.png"))
    for element, shot in [("fusion-steps", "4-fusion-steps.png"), ("fusion-chart", "5-fusion-chart.png"),
                          ("pair-values", "6-fusion-pair.png")]:
        browser.execute_script("document.getElementById('%s').scrollIntoView()" % element)
        browser.save_screenshot(os.path.join(out, shot))

    _, sample_step = library_blend(sample, 0, STEP, STEP + 1, 0.0)  # the value the edit replaced
    browser.find_element(By.ID, "tab-compare").click()
    browser.find_element(By.ID, "compare-run").click()
    wait.until(lambda b: "differences" in b.find_element(By.ID, "compare-summary").text)
    shown_lines = browser.execute_script("return [...document.querySelectorAll('#compare-lines li')].map((l) => l.textContent)")
    browser.save_screenshot(os.path.join(out, "7-compare.png"))
    browser.find_element(By.ID, "compare-changed-only").click()
    wait.until(lambda b: len(b.find_elements(By.CSS_SELECTOR, "#compare-side tbody tr")) == 1)
    assert browser.find_element(By.CSS_SELECTOR, "#compare-side tr.changed").text.split() == [
        "fusion[%d].ep_delta" % STEP, str(EDITED), str(sample_step), "changed"]
    browser.save_screenshot(os.path.join(out, "8-compare-side-by-side.png"))

    browser.find_element(By.ID, "tab-save").click()
    browser.find_element(By.ID, "save-run").click()
    wait.until(lambda b: "Saved" in b.find_element(By.ID, "save-result").text)
    browser.save_screenshot(os.path.join(out, "9-save.png"))

    browser.find_element(By.ID, "tab-simulate").click()
    Select(browser.find_element(By.ID, "sim-scenario")).select_by_value("gain_sweep")
    wait.until(lambda b: "gain_sweep.json" in b.find_element(By.ID, "sim-summary").text)
    Select(browser.find_element(By.ID, "sim-field")).select_by_value("FUSION ep_delta")
    chart_says = "return decodeURIComponent(document.getElementById('sim-chart').src)"
    wait.until(lambda b: "FUSION ep_delta sent" in b.execute_script(chart_says))
    assert "expected: zeros at the start of a linked pair" in browser.execute_script(chart_says)
    sim_rows = browser.execute_script("return [...document.querySelectorAll('#sim-values tbody tr')]"
                                      ".map((r) => [...r.cells].slice(0, 3).map((c) => c.textContent))")
    browser.save_screenshot(os.path.join(out, "10-simulate.png"))

    saved, rebuilt = wb.path("tuned.bin"), wb.path("rebuilt.bin")
    subprocess.run([cfg, "build", wb.path("tuned.json"), "-o", rebuilt], check=True, capture_output=True)
    assert open(saved, "rb").read() == open(rebuilt, "rb").read(), "the saved binary differs from the build of its source"
    expected, stored = library_blend(saved, 0, STEP, STEP + 1, coef)
    assert stored == EDITED, "the saved step %d holds ep_delta %d" % (STEP, stored)
    assert shown == expected, "the page shows ep_delta %d, the library blends %d" % (shown, expected)
    diff = subprocess.run([cfg, "diff", saved, sample], capture_output=True, text=True).stdout.splitlines()[:-1]
    assert diff == shown_lines, (diff, shown_lines)
    assert any("fusion[%d].ep_delta" % STEP in d for d in diff), diff
    on_page = [[int(f), p, int(v)] for f, p, v in sim_rows]
    assert on_page == simulated(saved, "ep_delta") != simulated(sample, "ep_delta"), on_page
    print("ok: edited, blended as the library does (ep_delta %d at coefficient %.2f), compared, saved, simulated" % (shown, coef))
finally:
    browser.quit()
    status, err = wb.stop()
    shutil.rmtree(profile, ignore_errors=True)
with open(os.path.join(out, "timings.json"), "w") as f:
    json.dump(timings, f, indent=1)
print(json.dumps(timings, indent=1))
sys.exit(0 if status == 0 else 1)
