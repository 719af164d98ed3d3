#!/usr/bin/python3
"""Takes docs/ui.png: the sample tuning served by `tonemetry ui`, the Usecase.Video mode and its
tonemetryPDLib module open, in headless Chromium. Run from the top of the tree after
`make demo` (which builds build/release):  /usr/bin/python3 docs/ui_screenshot.py
"""
import re
import subprocess
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support import expected_conditions
from selenium.webdriver.support.ui import WebDriverWait

TONEMETRY = 'build/release/tools/tonemetry/tonemetry'

with tempfile.TemporaryDirectory() as directory:
    tuning = f'{directory}/tuning.bin'
    subprocess.run([TONEMETRY, 'pack', 'examples/tuning_sample.json', '-o', tuning], check=True,
                   stdout=subprocess.DEVNULL)
    page = subprocess.Popen([TONEMETRY, 'ui', tuning, '--listen', '127.0.0.1:0', '--no-open'],
                            stdout=subprocess.PIPE, text=True)
    address = re.search(r'(http://\S+)', page.stdout.readline()).group(1)
    options = webdriver.ChromeOptions()
    options.binary_location = '/usr/bin/chromium'
    for argument in ('--headless=new', '--no-sandbox', '--window-size=1200,560', '--hide-scrollbars'):
        options.add_argument(argument)
    browser = webdriver.Chrome(service=Service('/usr/bin/chromedriver'), options=options)
    wait = WebDriverWait(browser, 20)
    try:
        browser.get(address)
        wait.until(expected_conditions.text_to_be_present_in_element((By.CSS_SELECTOR, '[data-status]'), 'ready'))
        for selector in ('li[data-tree="Default"] > .toggle', 'button[data-mode="Default|Usecase.Video"]',
                         'button.module[data-module="tonemetryPDLib"]', 'summary[data-record="correlation"]'):
            wait.until(expected_conditions.element_to_be_clickable((By.CSS_SELECTOR, selector))).click()
        wait.until(expected_conditions.presence_of_element_located((By.CSS_SELECTOR, 'input[data-name="PDRangeControl"]')))
        browser.save_screenshot('docs/ui.png')
    finally:
        browser.quit()
        page.terminate()
        page.wait()
