"""A browser without a window, where this machine has one."""

import html
import os
import re
import shutil
import subprocess
import tempfile

PROGRAM = next(filter(None, map(shutil.which, ('chromium', 'chromium-browser', 'google-chrome'))), None)
# Seconds. The first start of a browser on a busy machine takes longest.
LONGEST = 120


def _run(url, *options, language='en'):
    """What goes to standard output, and the messages of the page's console."""
    with tempfile.TemporaryDirectory(prefix='corvel_browser_') as profile:
        ended = subprocess.run(
            [PROGRAM, '--headless', '--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-extensions',
             '--disable-background-networking', '--disable-component-update', '--disable-sync',
             '--hide-scrollbars', '--enable-logging=stderr', '--v=0', f'--lang={language}',
             f'--accept-lang={language}', f'--user-data-dir={profile}', *options, url],
            capture_output=True, timeout=LONGEST, check=True,
            env={**os.environ, 'LANGUAGE': language, 'LANG': f'{language}.UTF-8'})
    errors = ended.stderr.decode('utf-8', 'replace')
    return ended.stdout.decode('utf-8', 'replace'), re.findall(r'CONSOLE.*?\] (".*)', errors)


def url_of(path):
    return 'file://' + os.fsdecode(os.path.abspath(path))


def dom(path, language='en', width=1280, height=1000, picture=None):
    """The page as it is behind its script, and what its console says. Puts a picture of it at `picture`."""
    pictures = [] if picture is None else [f'--screenshot={os.fsdecode(picture)}']
    return _run(url_of(path), '--dump-dom', f'--window-size={width},{height}', *pictures, language=language)


def overflow(path, width, language='en'):
    """How many pixels the page is wider than such a window. No window is as narrow as a telephone: the page is
    in a frame, where it finds as much room."""
    with open(path, encoding='utf-8') as file:
        text = html.escape(file.read())
    with tempfile.TemporaryDirectory() as folder:
        around = os.path.join(folder, 'around.html')
        with open(around, 'w', encoding='utf-8') as file:
            file.write(f'<!DOCTYPE html><meta charset="utf-8"><iframe width="{width}" height="900" style="border: 0" '
                       f'srcdoc="{text}" onload="document.body.setAttribute(\'data-wide\', '
                       'this.contentDocument.documentElement.scrollWidth)"></iframe>')
        shown, _ = dom(around, language)
    return int(re.search(r'data-wide="(\d+)"', shown)[1]) - width


def screenshot(path, picture, width, height, dark=False):
    """Puts a picture of the page at `picture`; gives what its console says."""
    options = ['--force-dark-mode', '--blink-settings=preferredColorScheme=0'] if dark else []
    _, console = _run(url_of(path), f'--screenshot={os.fsdecode(picture)}',
                      f'--window-size={width},{height}', *options)
    return console
