"""Chromium without a window, for tests of the pages that the command writes."""
import json
import pathlib
import shutil
import subprocess
import tempfile

NAME = "chromium"
OPTIONS = [
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync"]

# Shows a page in frames of several widths, and writes into its own document what they look like.
FRAMES = """<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>frames</title></head><body><pre id="looks"></pre>
<script>
const widths = %s;
const looks = {};
const parsed = colour => (colour.match(/[\\d.]+/g) || []).map(Number);
const light = ([red, green, blue]) => [red, green, blue].reduce((sum, part, at) => {
  const value = part / 255;
  return sum + [0.2126, 0.7152, 0.0722][at] * (value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4);
}, 0);
const contrast = (one, other) => (Math.max(light(one), light(other)) + 0.05) / (Math.min(light(one), light(other)) + 0.05);
function ground(view, element) {
  for (let at = element; at; at = at.parentElement) {
    const colour = parsed(view.getComputedStyle(at).backgroundColor);
    if (colour.length === 3 || colour[3] === 1) { return colour; }
  }
  return [255, 255, 255];
}
function look(frame) {
  const view = frame.contentWindow, page = frame.contentDocument, root = page.documentElement;
  const told = {overflow: root.scrollWidth - root.clientWidth, broken: [], sticksOut: [], faint: [], mode: view.matchMedia(
    "(prefers-color-scheme: dark)").matches ? "dark" : "light", sections: {}};
  for (const link of page.querySelectorAll("a[href]")) {
    const target = link.getAttribute("href");
    if (!target.startsWith("#") || !page.getElementById(target.slice(1))) { told.broken.push(target); }
  }
  for (const section of page.querySelectorAll("section")) { told.sections[section.id] = section.innerText; }
  for (const element of page.body.querySelectorAll("*")) {
    const text = [...element.childNodes].some(node => node.nodeType === 3 && node.data.trim() !== "");
    const box = element.getBoundingClientRect();
    if (!text || box.width === 0 || element.closest("title, desc, style")) { continue; }
    if (!element.closest(".scroll") && (box.left < 0 || box.right > root.clientWidth + 1)) {
      told.sticksOut.push(element.textContent.slice(0, 60));
    }
    const style = view.getComputedStyle(element);
    const colour = parsed(element instanceof view.SVGElement ? style.fill : style.color);
    const seen = contrast(colour, ground(view, element));
    if (seen < 4.5) { told.faint.push(element.textContent.slice(0, 60) + ": " + seen.toFixed(2)); }
  }
  return told;
}
let left = widths.length;
for (const width of widths) {
  const frame = document.createElement("iframe");
  frame.style.width = width + "px";
  frame.style.height = "800px";
  frame.style.border = 0;
  frame.onload = () => {
    looks[width] = look(frame);
    if (--left === 0) { document.getElementById("looks").textContent = JSON.stringify(looks); }
  };
  frame.src = %s;
  document.body.append(frame);
}
</script></body></html>
"""


def is_there():
    return shutil.which(NAME) is not None


def run(folder, page, *options):
    """The finished run of the browser for the page, with a new profile."""
    with tempfile.TemporaryDirectory(dir=folder) as profile:
        command = [NAME, *OPTIONS, f"--user-data-dir={profile}", *options, pathlib.Path(page).as_uri()]
        return subprocess.run(command, check=True, capture_output=True, timeout=240)


def printed(folder, page):
    """The text of the page on paper."""
    pdf = pathlib.Path(folder) / "page.pdf"
    run(folder, page, f"--print-to-pdf={pdf}")
    return subprocess.run(["pdftotext", pdf, "-"], check=True, capture_output=True, text=True).stdout


def console_lines(folder, page):
    """What the browser says about the page: errors of scripts, of its policy, and of what it could not load."""
    said = run(folder, page, "--enable-logging=stderr", "--dump-dom").stderr.decode("utf-8", "replace")
    return [line for line in said.splitlines() if "CONSOLE" in line]


def looks(folder, page, widths, dark=False):
    """For each width: "overflow" in pixels, texts that stick out of the page ("sticksOut"), texts of a contrast below 4.5
    to 1 ("faint"), links that lead nowhere ("broken"), the "mode" of colours, and the text of each section by its id."""
    frames = pathlib.Path(folder) / "frames.html"
    frames.write_text(FRAMES % (json.dumps(widths), json.dumps(pathlib.Path(page).as_uri())), encoding="utf-8")
    options = ["--allow-file-access-from-files", "--virtual-time-budget=20000", "--window-size=1400,1000", "--dump-dom"]
    if dark:
        options.append("--blink-settings=preferredColorScheme=0")
    dom = run(folder, frames, *options).stdout.decode("utf-8")
    text = dom.split('<pre id="looks">', 1)[1].split("</pre>", 1)[0]
    for escaped, character in (("&lt;", "<"), ("&gt;", ">"), ("&nbsp;", "\u00a0"), ("&amp;", "&")):
        text = text.replace(escaped, character)
    return {int(width): look for width, look in json.loads(text).items()}


def assert_readable(folder, page):
    """The browser says nothing about the page, and on a desk and a phone, light and dark, all its texts can be read and its
    links lead somewhere. Returns the looks, each with words for where."""
    said = console_lines(folder, page)
    assert not said, f"the browser complains: {said}"
    told = []
    for dark in (False, True):
        for width, look in looks(folder, page, [1280, 400], dark).items():
            where = f"at {width} pixels in {look['mode']} colours"
            assert look["mode"] == ("dark" if dark else "light"), look["mode"]
            assert look["overflow"] <= 0 and not look["sticksOut"], f"{look['overflow']} pixels too wide {where}: {look['sticksOut']}"
            assert not look["faint"], f"too faint {where}: {look['faint']}"
            assert not look["broken"], f"links lead nowhere {where}: {look['broken']}"
            told.append((where, look))
    return told
