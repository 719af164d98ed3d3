#!/usr/bin/python3
"""The live tuning page in a headless Chromium, as a tuning engineer uses it: a served file as
the device, the page on it; choose a mode, open a module, edit a value and read it back over the
link, see an array's plot, export the edit log and pack it into the source, undo the edit.

Run by ctest with Debian's own interpreter (its selenium imports nowhere else):
    ui_browser_test.py TONEMETRY EXAMPLES_DIR
"""
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support import expected_conditions
from selenium.webdriver.support.ui import WebDriverWait

TONEMETRY = sys.argv[1] if len(sys.argv) > 1 else 'tonemetry'
EXAMPLES = sys.argv[2] if len(sys.argv) > 2 else 'examples'
WAIT_SECONDS = 20
THRESHOLD = ('tonemetryPDLib.correlation', 'defocusConfidenceThreshold')


def started(arguments, pattern, directory):
    """A program of the tool that serves until stopped, and the first match of `pattern` in
    its output."""
    process = subprocess.Popen([TONEMETRY] + arguments, cwd=directory, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, text=True)
    line = process.stdout.readline()
    match = re.search(pattern, line)
    if not match:
        process.kill()
        raise RuntimeError(f'{arguments[0]} printed {line!r}: {process.stderr.read()}')
    return process, match.group(1)


def stop(process):
    process.terminate()
    process.wait(timeout=10)


def tool(*arguments):
    return subprocess.run([TONEMETRY] + list(arguments), capture_output=True, text=True, timeout=60)


class LiveTuningPage(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.mkdtemp(prefix='uibrowser.')
        with open(os.path.join(EXAMPLES, 'tuning_sample.json')) as sample:
            source = json.load(sample)
        # One hardware pattern, so that the page has an array to plot and a list of records
        # with arrays of equal length for a heat map.
        pattern = {'pixelSeparator': {'inputBlockWidth': 16, 'L_map': [k * k % 97 for k in range(32)]},
                   'resampler': {'enable': 1, 'instructions': [{'S': [row + k for k in range(8)]} for row in range(3)]}}
        source['modules'][0]['values']['hardwarePattern'] = [pattern]
        self.source = os.path.join(self.directory, 'source.json')
        with open(self.source, 'w') as out:
            json.dump(source, out)
        self.file = os.path.join(self.directory, 'tuning.bin')
        packed = tool('pack', self.source, '-o', self.file)
        self.assertEqual(0, packed.returncode, packed.stderr)

        self.camera, port = started(['serve', self.file], r'listening on port (\d+)', self.directory)
        self.device = f'live:127.0.0.1:{port}'
        self.page, self.address = started(['ui', self.device, '--listen', '127.0.0.1:0', '--no-open'],
                                          r'^open (http://\S+)$', self.directory)
        options = webdriver.ChromeOptions()
        options.binary_location = '/usr/bin/chromium'
        for argument in ('--headless=new', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage'):
            options.add_argument(argument)
        self.browser = webdriver.Chrome(service=Service('/usr/bin/chromedriver'), options=options)
        self.wait = WebDriverWait(self.browser, WAIT_SECONDS)

    def tearDown(self):
        self.browser.quit()
        stop(self.page)
        stop(self.camera)
        subprocess.run(['rm', '-rf', self.directory], check=False)

    def status_reads(self, text):
        try:
            self.wait.until(expected_conditions.text_to_be_present_in_element(
                (By.CSS_SELECTOR, '[data-status]'), text))
        except Exception:
            shown = self.browser.find_element(By.CSS_SELECTOR, '[data-status]').text
            self.fail(f'the status shows {shown!r}, not {text!r}')

    def click(self, selector):
        self.wait.until(expected_conditions.element_to_be_clickable((By.CSS_SELECTOR, selector))).click()

    @staticmethod
    def replace_text(field, text):
        """Types `text` over the field's text and commits it with Enter."""
        field.send_keys(Keys.CONTROL + 'a')  # a call of its own: the modifier is let go at its end
        field.send_keys(text, Keys.ENTER)

    def open_record(self, name):
        self.click(f'summary[data-record="{name}"]')

    def live_get(self, device, mode):
        got = tool('live', device, 'get', mode, *THRESHOLD)
        self.assertEqual(0, got.returncode, got.stderr)
        return got.stdout

    def test_edit_plot_export_and_undo(self):
        self.browser.get(self.address)
        self.status_reads('ready')
        self.click('li[data-tree="Default"] > .toggle')
        self.click('button[data-mode="Default|Usecase.Video"]')
        self.click('button.module[data-module="tonemetryPDLib"]')
        self.open_record('correlation')
        field = self.wait.until(expected_conditions.presence_of_element_located((By.CSS_SELECTOR,
            'input[data-mode="Default|Usecase.Video"][data-path="tonemetryPDLib.correlation"]'
            '[data-name="defocusConfidenceThreshold"]')))
        self.assertEqual('150.0', field.get_attribute('value'))

        # A value that its type cannot take is not sent.
        self.replace_text(field, 'abc')
        self.status_reads('Float takes a number; not sent')

        self.replace_text(field, '175')
        self.status_reads('defocusConfidenceThreshold = 175.0')
        self.assertEqual('defocusConfidenceThreshold = 175.0\n', self.live_get(self.device, 'Usecase.Video'))

        # The array of the root's module, as a table and a plot.
        self.click('button[data-mode="Default"]')
        self.click('button.module[data-module="tonemetryPDLib"]')
        self.open_record('hardwarePattern[0]')
        self.open_record('pixelSeparator')
        self.wait.until(expected_conditions.presence_of_element_located(
            (By.CSS_SELECTOR, 'canvas[data-plot="tonemetryPDLib.hardwarePattern[0].pixelSeparator.L_map"]')))
        self.open_record('resampler')
        self.click('button[data-heatmaps="tonemetryPDLib.hardwarePattern[0].resampler.instructions"]')
        heat_map = self.wait.until(expected_conditions.presence_of_element_located(
            (By.CSS_SELECTOR, 'canvas[data-heatmap="tonemetryPDLib.hardwarePattern[0].resampler.instructions.S"]')))
        self.assertEqual(('64', '24'), (heat_map.get_attribute('width'), heat_map.get_attribute('height')),
                         'eight columns of three rows')

        # The edit log, exported as the page's button does, packed into the source.
        edits = self.browser.execute_async_script(
            'const done = arguments[0]; fetch("/api/edits").then((r) => r.json()).then(done);')
        self.assertEqual({'edits': [{'mode': 'Default|Usecase.Video', 'module': 'tonemetryPDLib',
                                     'path': 'correlation', 'name': 'defocusConfidenceThreshold',
                                     'value': '175', 'old': '150.0'}]}, edits)
        edits_file = os.path.join(self.directory, 'edits.json')
        with open(edits_file, 'w') as out:
            json.dump(edits, out)
        edited = os.path.join(self.directory, 'edited.bin')
        packed = tool('pack', self.source, '--edits', edits_file, '-o', edited)
        self.assertEqual(0, packed.returncode, packed.stderr)
        stop(self.camera)
        self.camera, port = started(['serve', edited], r'listening on port (\d+)', self.directory)
        self.assertEqual('defocusConfidenceThreshold = 175.0\n',
                         self.live_get(f'live:127.0.0.1:{port}', 'Usecase.Video'))
        stop(self.camera)
        self.camera, port = started(['serve', self.file], r'listening on port (\d+)', self.directory)
        self.assertEqual(self.device, f'live:127.0.0.1:{port}', 'the first camera\'s port is free again')

        # Undo sets the old text back on the device, which the page found again by itself.
        self.live_get(self.device, 'Usecase.Video')
        tool('live', self.device, 'set', 'Usecase.Video', THRESHOLD[0], f'{THRESHOLD[1]}=175')
        self.click('#undo')
        self.status_reads('undone: defocusConfidenceThreshold = 150.0')
        self.assertEqual('defocusConfidenceThreshold = 150.0\n', self.live_get(self.device, 'Usecase.Video'))
        self.assertEqual(0, len(self.browser.find_elements(By.CSS_SELECTOR, '#edit-log li')))


if __name__ == '__main__':
    unittest.main(argv=sys.argv[:1])
