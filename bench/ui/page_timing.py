#!/usr/bin/python3
"""Figures of the live tuning page on the scale file of the store's benchmark (Default, 12
sensors, 8 use cases each, 7 Feature1 modes each, 3 scenes each, one tonemetryPDLib per mode
with its repeated members at the PD limits), served by `tonemetry serve` as the device:
the time until the root level of the mode tree shows, the time to open one leaf mode's module
list, and the round trip of one edit (change event to the status showing the device's answer),
p50 and p95 over 50 edits. Run by hand with a Release build, outside make test:

    /usr/bin/python3 bench/ui/page_timing.py build/release/tools/tonemetry/tonemetry
"""
import json
import re
import statistics
import subprocess
import sys
import tempfile
import time

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support import expected_conditions
from selenium.webdriver.support.ui import WebDriverWait

TONEMETRY = sys.argv[1] if len(sys.argv) > 1 else 'build/release/tools/tonemetry/tonemetry'
EDITS = 50


def pd_tuning(seed):
    patterns = []
    for pattern in range(2):
        patterns.append({
            'lineExtractor': [{'XOffset': seed + line, 'YOffset': pattern + line, 'HalfLine': line % 2}
                              for line in range(16)],
            'pixelSeparator': {'inputBlockWidth': 16, 'L_map': [seed + k for k in range(128)],
                               'R_map': [seed - k for k in range(128)]},
            'resampler': {'enable': 1, 'instructions': [
                {'S': [seed + i + k for k in range(8)], 'O': [0.25 * (seed % 97) + i + k for k in range(4)]}
                for i in range(32)]},
            'gridWidthScaleRatio': 1.0, 'gridHeightScaleRatio': 1.0})
    weights = [{'weight': 0.5 + k, 'confThreshold': seed + k} for k in range(4)]
    return {'parameter_version': {'revision': f'scale {seed}'},
            'correlation': {'defocusConfidenceThreshold': 100 + seed % 50},
            'HVControl': {'horizontalConfWeightTuning': weights, 'verticalConfWeightTuning': weights},
            'hardwarePattern': patterns}


def scale_source():
    modes, modules = [{'name': 'Default'}], [{'name': 'tonemetryPDLib', 'mode': 'Default', 'values': pd_tuning(0)}]

    def add(name, parent):
        modes.append({'name': name, 'parent': parent} if parent else {'name': name})
        path = f'{parent}|{name}' if parent else name
        modules.append({'name': 'tonemetryPDLib', 'mode': path, 'values': pd_tuning(len(modules))})
        return path

    for sensor in range(12):
        sensor_path = add(f'Sensor.{sensor}', '')
        for usecase in range(8):
            usecase_path = add(f'Usecase.{usecase}', sensor_path)
            for feature in range(7):
                feature_path = add(f'Feature1.{feature}', usecase_path)
                for scene in range(3):
                    add(f'Scene.{scene}', feature_path)
    return {'setManager': 'TuningSetManager', 'binaryTag': 'scale', 'modes': modes, 'modules': modules}


def started(arguments, pattern):
    process = subprocess.Popen([TONEMETRY] + arguments, stdout=subprocess.PIPE, text=True)
    return process, re.search(pattern, process.stdout.readline()).group(1)


# Sets the field's text, fires its change event and resolves with the milliseconds until the
# status line shows the device's answer.
ROUND_TRIP = '''
const [field, text, expected, done] = arguments;
const status = document.querySelector('[data-status]');
const start = performance.now();
const observer = new MutationObserver(() => {
  if (status.textContent === expected) { observer.disconnect(); done(performance.now() - start); }
});
observer.observe(status, { childList: true, characterData: true, subtree: true });
field.value = text;
field.dispatchEvent(new Event('change'));
'''

with tempfile.TemporaryDirectory() as directory:
    with open(f'{directory}/scale.json', 'w') as out:
        json.dump(scale_source(), out)
    subprocess.run([TONEMETRY, 'pack', f'{directory}/scale.json', '-o', f'{directory}/scale.bin'], check=True)
    camera, port = started(['serve', f'{directory}/scale.bin'], r'listening on port (\d+)')
    page, address = started(['ui', f'live:127.0.0.1:{port}', '--listen', '127.0.0.1:0', '--no-open'],
                            r'(http://\S+)')
    options = webdriver.ChromeOptions()
    options.binary_location = '/usr/bin/chromium'
    for argument in ('--headless=new', '--no-sandbox', '--disable-gpu'):
        options.add_argument(argument)
    browser = webdriver.Chrome(service=Service('/usr/bin/chromedriver'), options=options)
    wait = WebDriverWait(browser, 60)
    click = lambda selector: wait.until(expected_conditions.element_to_be_clickable((By.CSS_SELECTOR, selector))).click()
    try:
        start = time.monotonic()
        browser.get(address)
        click('li[data-tree="Default"] > .toggle')
        wait.until(expected_conditions.presence_of_element_located((By.CSS_SELECTOR, 'button[data-mode="Default|Sensor.11"]')))
        first_level = time.monotonic() - start

        leaf = 'Default|Sensor.11'
        click(f'li[data-tree="{leaf}"] > .toggle')
        for level in ('Usecase.IdealRawReprocess', 'Feature1.MFHDRPostFusion'):
            leaf = f'{leaf}|{level}'
            click(f'li[data-tree="{leaf}"] > .toggle')
        leaf = f'{leaf}|Scene.Snow'
        start = time.monotonic()
        click(f'button[data-mode="{leaf}"]')
        wait.until(expected_conditions.presence_of_element_located((By.CSS_SELECTOR, 'button.module[data-module="tonemetryPDLib"]')))
        module_list = time.monotonic() - start

        click('button.module[data-module="tonemetryPDLib"]')
        click('summary[data-record="correlation"]')
        field = wait.until(expected_conditions.presence_of_element_located(
            (By.CSS_SELECTOR, 'input[data-name="defocusConfidenceThreshold"]')))
        rounds = []
        for edit in range(EDITS):
            value = 100 + edit
            rounds.append(browser.execute_async_script(ROUND_TRIP, field, str(value),
                                                       f'defocusConfidenceThreshold = {value}.0'))
        rounds.sort()
        print(f'first level of the mode tree: {first_level * 1000:.0f} ms')
        print(f'module list of a leaf mode: {module_list * 1000:.0f} ms')
        print(f'edit round trip over {EDITS} edits: p50 {statistics.median(rounds):.1f} ms, '
              f'p95 {rounds[int(0.95 * (EDITS - 1))]:.1f} ms')
    finally:
        browser.quit()
        page.terminate()
        camera.terminate()
