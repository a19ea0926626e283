#!/usr/bin/env python3
"""Renders the report pages in Chromium and looks at what a person sees.

    browser_test.py REPORT_PAGES

REPORT_PAGES is the program that writes the pages. chromedriver, spoken to over HTTP, is all that is needed.
"""

import http.client
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PAGES = Path()

# Of each element that holds a text of its own and is seen: the text, its colour and that of what it stands on.
TEXTS = """
const seen = element => {
  const box = element.getBoundingClientRect();
  const style = getComputedStyle(element);
  return box.width > 1 && box.height > 1 && style.visibility === 'visible' && box.right > 0;
};
const ground = element => {
  for (let at = element; at; at = at.parentElement) {
    const colour = getComputedStyle(at).backgroundColor;
    if (!/, 0\\)$/.test(colour) && colour !== 'transparent') return colour;
  }
  return 'rgb(255, 255, 255)';
};
return [...document.querySelectorAll('body *')]
  .filter(e => !e.closest('svg') && [...e.childNodes].some(n => n.nodeType === 3 && n.data.trim()) && seen(e))
  .map(e => [e.textContent.trim().slice(0, 60), getComputedStyle(e).color, ground(e)]);
"""

OVERFLOW = """
const outside = [...document.querySelectorAll('body *')].filter(e =>
  !e.closest('.scroll') && !e.closest('caption') && !e.closest('.skip') &&
  e.getBoundingClientRect().right > innerWidth + 0.5);
return [document.documentElement.scrollWidth, innerWidth, outside.slice(0, 3).map(e => e.outerHTML.slice(0, 120))];
"""

# Texts in drawings that stand out of them.
CUT_TEXTS = """
return [...document.querySelectorAll('svg text')].filter(t => {
  const text = t.getBoundingClientRect(), box = t.closest('svg').getBoundingClientRect();
  return box.width > 0 && (text.left < box.left - 1 || text.right > box.right + 1 || text.bottom > box.bottom + 1);
}).map(t => t.textContent);
"""

BOXES = """
return [...document.querySelectorAll(arguments[0])].map(e => {
  const box = e.getBoundingClientRect();
  return {x: box.x, y: box.y, width: box.width, height: box.height, text: e.textContent.trim()};
});
"""


class Browser:
    """A session of Chromium."""

    def __init__(self):
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        self.port = self.wait_for_port()
        self.profile = tempfile.TemporaryDirectory(prefix="report-browser-")
        options = {"args": [
            "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--disable-quic",
            "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync",
            "--hide-scrollbars", f"--user-data-dir={self.profile.name}"]}
        self.session = None
        try:
            answer = self.call("POST", "/session", {"capabilities": {"alwaysMatch": {"goog:chromeOptions": options}}})
            self.session = "/session/" + answer["sessionId"]
        except BaseException:
            self.close()
            raise

    def wait_for_port(self):
        for line in self.driver.stdout:
            found = re.search(r"successfully on port (\d+)", line)
            if found:
                return int(found[1])
        raise RuntimeError("chromedriver ended")

    def call(self, method, path, body=None):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=60)
        connection.request(method, path, None if body is None else json.dumps(body),
                           {"Content-Type": "application/json"})
        value = json.loads(connection.getresponse().read())["value"]
        connection.close()
        if isinstance(value, dict) and "error" in value:
            raise RuntimeError(value["message"])
        return value

    def open(self, page, width, scheme="light", medium="screen"):
        self.command("Emulation.setDeviceMetricsOverride",
                     {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
        self.command("Emulation.setEmulatedMedia",
                     {"media": medium, "features": [{"name": "prefers-color-scheme", "value": scheme}]})
        self.call("POST", self.session + "/url", {"url": (PAGES / f"{page}.html").as_uri()})

    def command(self, name, parameters):
        self.call("POST", self.session + "/goog/cdp/execute", {"cmd": name, "params": parameters})

    def run(self, script, *arguments):
        return self.call("POST", self.session + "/execute/sync", {"script": script, "args": list(arguments)})

    def boxes(self, selector):
        return self.run(BOXES, selector)

    def close(self):
        try:
            if self.session:
                self.call("DELETE", self.session)
        finally:
            self.driver.terminate()
            self.driver.wait(10)
            self.driver.stdout.close()
            self.profile.cleanup()


def rgb(colour):
    """Red, green and blue of "rgb(1, 2, 3)", from 0 to 1."""
    return [float(part) / 255 for part in re.findall(r"[\d.]+", colour)[:3]]


def luminance(colour):
    """The relative luminance of WCAG 2."""
    red, green, blue = [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in rgb(colour)]
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue


def contrast(a, b):
    low, high = sorted([luminance(a), luminance(b)])
    return (high + 0.05) / (low + 0.05)


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()

    def test_nothing_is_wider_than_the_window(self):
        for page in ("device", "fit", "two", "alone"):
            for width in (1280, 390):
                with self.subTest(page=page, width=width):
                    self.browser.open(page, width)
                    scroll_width, inner_width, outside = self.browser.run(OVERFLOW)
                    self.assertEqual((scroll_width, inner_width, outside), (width, width, []))

    def test_texts_have_the_contrast_that_people_need(self):
        for page in ("fit", "two"):
            for scheme in ("light", "dark"):
                self.browser.open(page, 1280, scheme)
                texts = self.browser.run(TEXTS)
                self.assertGreater(len(texts), 300)
                for text, colour, ground in texts:
                    self.assertGreaterEqual(contrast(colour, ground), 4.5, (page, scheme, text, colour, ground))

    def test_dark_is_dark_and_light_is_light(self):
        grounds = {}
        for scheme in ("light", "dark"):
            self.browser.open("device", 1280, scheme)
            grounds[scheme] = luminance(self.browser.run("return getComputedStyle(document.body).backgroundColor"))
        self.assertGreater(grounds["light"], 0.8)
        self.assertLess(grounds["dark"], 0.05)

    def test_sizes_are_drawn_to_scale(self):
        self.browser.open("device", 1280)
        sizes = [box for box in self.browser.boxes("svg.medium") if box["width"] > 0]
        self.assertEqual(len(sizes), 44)
        papers = {box["text"]: box for box in self.browser.run("""
            return [...document.querySelectorAll('svg.medium')].map(svg => {
              const box = svg.querySelector('.paper').getBoundingClientRect();
              return {text: svg.querySelector('title').textContent, width: box.width, height: box.height};
            })""")}
        for title, box in papers.items():
            width, height = [float(side) for side in re.search(r": ([\d.]+) × ([\d.]+) mm", title).groups()]
            self.assertAlmostEqual(box["width"] / box["height"], width / height, delta=0.06 * width / height, msg=title)
        a0 = next(box for title, box in papers.items() if title.startswith("ISO A0 – portrait"))
        a4 = next(box for title, box in papers.items() if title.startswith("ISO A4 – portrait"))
        self.assertAlmostEqual(a0["height"] / a4["height"], 1189 / 297, delta=0.3)

    def test_drawings_hold_their_texts(self):
        for page in ("device", "two"):
            self.browser.open(page, 1280)
            self.assertEqual(self.browser.run(CUT_TEXTS), [])

    def test_sections_stand_one_below_the_other(self):
        for width in (1280, 390):
            self.browser.open("fit", width)
            sections = self.browser.boxes("main > section")
            self.assertEqual(len(sections), 10)
            for above, below in zip(sections, sections[1:]):
                self.assertGreater(above["height"], 60)
                self.assertGreaterEqual(below["y"], above["y"] + above["height"])

    def test_the_flow_goes_from_sources_by_the_device_to_outputs(self):
        for width in (1280, 390):
            self.browser.open("device", width)
            source = self.browser.boxes(".sources > li")[0]
            device = self.browser.boxes(".device")[0]
            output = self.browser.boxes(".output")[0]
            self.assertLess(source["y"] + source["height"], device["y"])
            self.assertLess(device["y"] + device["height"], output["y"])
            steps = self.browser.boxes(".output:last-child .finishing")
            self.assertEqual(len(steps), 4)
            direction = "x" if width == 1280 else "y"
            self.assertEqual(sorted(steps, key=lambda box: box[direction]), steps)
            self.assertGreater(steps[1][direction], steps[0][direction])

    def test_what_is_impossible_is_red(self):
        for scheme in ("light", "dark"):
            self.browser.open("fit", 1280, scheme)
            for selector in (".finding.error .verdict", "tr.impossible .value", ".badge.bad"):
                colours = self.browser.run(
                    "return [...document.querySelectorAll(arguments[0])].map(e => getComputedStyle(e).color)", selector)
                self.assertTrue(colours, selector)
                for red, green, blue in map(rgb, colours):
                    self.assertGreater(red, max(green, blue) + 0.2)

    def test_what_is_chosen_stands_out(self):
        self.browser.open("fit", 1280)
        chosen = self.browser.boxes(".size.chosen")
        self.assertEqual(len(chosen), 1)
        self.assertIn("ISO A0 – portrait", chosen[0]["text"])
        borders = self.browser.run("""
            return ['.size.chosen', '.size:not(.chosen)'].map(
              s => getComputedStyle(document.querySelector(s)).borderTopColor)""")
        self.assertNotEqual(*borders)
        self.assertIn("Cut", " ".join(box["text"] for box in self.browser.boxes(".step.chosen")))

    def test_configurations_stand_side_by_side(self):
        self.browser.open("two", 1280)
        heads = self.browser.boxes("#configuration thead th")[:3]
        self.assertEqual([head["text"] for head in heads], ["Setting", "A: plotter.pia", "B: office.pc2"])
        self.assertLess(heads[0]["x"], heads[1]["x"])
        self.assertLess(heads[1]["x"], heads[2]["x"])
        self.assertGreater(len(self.browser.boxes("tr.differs .unequal")), 50)

    def test_paper_has_no_navigation_and_a_white_ground(self):
        self.browser.open("fit", 718, "dark", "print")
        self.assertEqual(self.browser.boxes("nav")[0]["height"], 0)
        ground = self.browser.run("return getComputedStyle(document.body).backgroundColor")
        self.assertEqual(rgb(ground), [1, 1, 1])
        for text, colour, ground in self.browser.run(TEXTS):
            self.assertGreaterEqual(contrast(colour, ground), 4.5, (text, colour, ground))

    def test_nothing_is_loaded(self):
        self.browser.open("two", 1280)
        self.assertEqual(self.browser.run("return performance.getEntriesByType('resource').map(e => e.name)"), [])


def main():
    global PAGES
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    program = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory(prefix="report-pages-") as folder:
        PAGES = Path(folder)
        subprocess.run([program, folder], check=True)
        unittest.main(argv=sys.argv[:1])


main()
