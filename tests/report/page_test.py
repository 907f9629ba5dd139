#!/usr/bin/python3
"""The page in a real browser: page_test.py BINARIES EXAMPLES.

What the page offers is compared with what the tables of random networks allow, told by the few
lines of Network below. Exits with 77 where Chromium or Selenium is missing.
"""

import json
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.keys import Keys
except ImportError:
    webdriver = None

BROWSER, DRIVER = shutil.which("chromium"), shutil.which("chromedriver")
if webdriver is None or BROWSER is None or DRIVER is None:
    print("skipped: needs chromium, chromium-driver and python3-selenium")
    sys.exit(77)
BINARIES, EXAMPLES = (pathlib.Path(name).resolve() for name in sys.argv[1:3])


class Network:
    """Tables of a network: locations of each automaton, and moves of (automaton, action)."""

    def __init__(self, locations, transitions, names=None):
        self.locations = locations
        self.transitions = sorted(set(transitions))
        self.moves = {}
        for a, source, target, action in transitions:
            self.moves.setdefault(action, {}).setdefault(a, set()).add((source, target))
        self.names = names or {}

    def text(self):
        lines = ["network"]
        declared = {}
        for a, source, target, action in self.transitions:
            declared.setdefault(a, []).extend([f"transition {source} {target} {action}", "end"])
        for a, count in enumerate(self.locations):
            lines.append(self.names.get(a, f"automaton {a + 1}"))
            for l in range(count):
                lines += [f"location {l} {self.names.get((a, l), '')}", "end"]
            lines += declared.get(a, []) + ["valuation", "end", "end"]
        return "\n".join(lines + ["end", ""])

    def possible(self, state):
        """For each possible action the targets of each of its automata."""
        found = {}
        for action, of in self.moves.items():
            targets = {a: sorted(t for s, t in moves if s == state[a]) for a, moves in of.items()}
            if all(targets.values()):
                found[action] = targets
        return found


def random_network(dice):
    locations = [dice.randint(1, 4) for _ in range(dice.randint(1, 4))]
    transitions = []
    for a, count in enumerate(locations):
        for _ in range(dice.randint(0, 3 * count)):
            action = dice.choice([0, 1, 2, 10 + a, 20 + a])
            transitions.append((a, dice.randrange(count), dice.randrange(count), action))
    return Network(locations, transitions)


def setUpModule():
    global browser, scratch, page_dir
    scratch = tempfile.TemporaryDirectory()
    page_dir = pathlib.Path(scratch.name)
    options = webdriver.ChromeOptions()
    options.binary_location = BROWSER
    for option in ("headless", "no-sandbox", "disable-gpu", "no-first-run", "disable-sync",
                   "disable-dev-shm-usage", "disable-background-networking",
                   "disable-component-update", "window-size=1300,1200"):
        options.add_argument("--" + option)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    browser = webdriver.Chrome(service=Service(DRIVER), options=options)
    browser.execute_cdp_cmd("Browser.setDownloadBehavior",
                            {"behavior": "allow", "downloadPath": scratch.name})


def tearDownModule():
    browser.quit()
    scratch.cleanup()


def run(*arguments, status=10):
    done = subprocess.run([BINARIES / arguments[0], *arguments[1:]], cwd=page_dir,
                          capture_output=True, check=False)
    assert done.returncode == status, done.stderr
    return done.stdout


def open_page(text, address=""):
    (page_dir / "page.html").write_bytes(text)
    browser.get("about:blank")
    browser.get(f"file://{page_dir}/page.html{address}")


def look(script):
    return browser.execute_script("return " + script)


def texts(selector):
    return look(f"[...document.querySelectorAll('{selector}')].map((e) => e.textContent)")


def press(*keys):
    for key in keys:
        webdriver.ActionChains(browser).send_keys(key).perform()


def click(selector):
    look(f"document.querySelector('{selector}').click()")


def state():
    return [row[2].removeprefix("→ ") for row in look(
        "[...document.querySelectorAll('#state > .row')]"
        ".map((row) => [...row.children].map((e) => e.textContent))")]


def position():
    return look("document.querySelector('.line.here').dataset.position")


def saved():
    file = page_dir / "walk.json"
    file.unlink(missing_ok=True)
    press("s")
    for _ in range(100):
        if file.exists() and file.stat().st_size > 0:
            return file
        time.sleep(0.05)
    raise AssertionError("nothing was saved")


def race_page(question):
    """Both processes of the race look before either raises its flag."""
    changes = {11: [[1, 0, 1]], 21: [[2, 0, 1]], 12: [[1, 1, 2], [3, 0, 1]],
               22: [[2, 1, 2], [4, 0, 1]]}
    walk = [{"action": action, "changes": of} for action, of in changes.items()]
    (page_dir / "race.json").write_text(json.dumps({"walk": walk}))
    return run("tervoxal-path", "--format=html", question, "--walk=race.json", EXAMPLES / "race")


class Page(unittest.TestCase):
    def tearDown(self):
        self.assertEqual([entry for entry in browser.get_log("browser")
                          if "favicon" not in entry["message"]], [])

    def test_by_hand(self):
        steps = 0
        for seed in range(20):
            dice = random.Random(seed)
            net = random_network(dice)
            (page_dir / "net.in").write_text(net.text())
            open_page(run("tervoxal-draw", "--format=html", "net", status=0))
            states = [[0] * len(net.locations)]
            for _ in range(dice.randint(1, 8)):
                possible = net.possible(states[-1])
                self.assertEqual(state(), [str(l) for l in states[-1]], seed)
                self.assertEqual(texts("#actions > .row"), [str(x) for x in sorted(possible)])
                if not possible:
                    break
                action = dice.choice(sorted(possible))
                if dice.random() < 0.5:
                    click(f"#option{sorted(possible).index(action)}")
                else:
                    press("/", str(action))
                    self.assertEqual(texts("#actions > .row")[:1],
                                     [str(min(x for x in possible if str(action) in str(x)))])
                    press(*[Keys.ARROW_DOWN] *
                          [x for x in sorted(possible) if str(action) in str(x)].index(action),
                          Keys.ENTER)
                chosen = {a: dice.choice(targets) for a, targets in possible[action].items()}
                several = [a for a, targets in possible[action].items() if len(targets) > 1]
                self.assertEqual(look("document.querySelector('#choice').open"), bool(several))
                for a in several:
                    self.assertEqual(
                        look(f"[...document.querySelectorAll('[name=move{a + 1}]')]"
                             ".map((e) => Number(e.value))"), possible[action][a])
                    click(f"[name=move{a + 1}][value=\"{chosen[a]}\"]")
                if several:
                    click("#take")
                    time.sleep(0.02)
                look("document.querySelector('#lanes').focus()")
                following = [chosen.get(a, l) for a, l in enumerate(states[-1])]
                if dice.random() < 0.2:
                    press("u")
                else:
                    states.append(following)
                    steps += 1
            if len(states) == 1:
                continue
            walk = run("tervoxal-path", "--format=json", f"--walk={saved()}", "net")
            self.assertEqual([p["locations"] for p in json.loads(walk)["positions"]], states, seed)
        self.assertGreater(steps, 50)

    def test_path(self):
        question = "--ask=critical1 & critical2"
        open_page(race_page(question))
        actions = texts(".line:not(.titles) .action")
        self.assertEqual([text.split()[0] for text in actions], ["start", "11", "21", "12", "22"])
        self.assertEqual(texts(".line:not(.titles) .marks"), ["", "", "", "A", "★ AB"])
        self.assertEqual(texts("#line3 .changed"), ["→ critical", "→ raised"])
        self.assertEqual(position(), "0")
        for key, expected in ((Keys.ARROW_DOWN, "1"), (Keys.ARROW_RIGHT, "2"), (Keys.END, "4"),
                              (Keys.ARROW_DOWN, "4"), (Keys.ARROW_UP, "3"), (Keys.HOME, "0"),
                              (Keys.ARROW_LEFT, "0")):
            press(key)
            self.assertEqual(position(), expected)
        click("#line2 .cell")
        self.assertEqual(position(), "2")
        time.sleep(0.2)
        self.assertTrue(browser.current_url.endswith("#step=2"))
        browser.execute_script("location.hash = '#step=99'")
        time.sleep(0.1)
        self.assertEqual(position(), "4")
        click("#parts li:first-child button")
        self.assertEqual(position(), "3")
        # Another step in place of the last one, and back.
        press("/", "leave", Keys.ENTER, Keys.ESCAPE)
        self.assertEqual(texts("#line4 .number")[0].split(), ["▶", "✎", "4"])
        self.assertEqual(texts("#line4 .marks"), [""])
        press("u", Keys.END)
        self.assertEqual(texts("#line4 .marks"), ["★ AB"])
        # What is saved of a path is the path.
        replayed = run("tervoxal-path", f"--walk={saved()}", question, EXAMPLES / "race")
        self.assertIn(b"* step 4: 22 raise flag 2, enter", replayed)

    def test_loop(self):
        page = race_page("--ask=critical1")
        open_page(page.replace(b'"network":"', b'"loop":1,"network":"'), "#step=1")
        self.assertEqual(texts(".end-line .action"), ["↻ goes on at state 1"])
        self.assertEqual(position(), "1")
        press(Keys.END)
        click("#play")
        for _ in range(60):
            if position() == "1":
                break
            time.sleep(0.05)
        self.assertEqual(position(), "1")

    def test_hostile_names(self):
        names = {0: "</script><script>hacked = 1</script>", (0, 0): "<img src=x onerror=hacked=2>",
                 (0, 1): "<!--<script>", 1: "\u2028 ' \" \\ &lt;b>", (1, 0): "__proto__"}
        net = Network([2, 1], [(0, 0, 1, 7), (1, 0, 0, 7)], names)
        (page_dir / "net.in").write_bytes(net.text().encode() + b"\xff")
        open_page(run("tervoxal-draw", "--format=html", "net", status=0))
        self.assertEqual(look("typeof hacked"), "undefined")
        self.assertEqual(texts(".line .title"), [names[0], names[1]])
        click("#option0")
        self.assertEqual(texts("#line1 .cell"), ["→ " + names[(0, 1)], "__proto__"])

    def test_large(self):
        automata, length = 8000, 5000
        net = Network([2] * automata,
                      [(a, s, 1 - s, 10 * a + s) for a in range(automata) for s in range(2)])
        (page_dir / "net.in").write_text(net.text())
        at = [0] * automata
        walk = []
        for i in range(length):
            a = i * 37 % automata
            walk.append({"action": 10 * a + at[a], "changes": [[a + 1, at[a], 1 - at[a]]]})
            at[a] = 1 - at[a]
        (page_dir / "big.json").write_text(json.dumps({"walk": walk}))
        page = run("tervoxal-path", "--format=html", "--all", "--walk=big.json", "net")
        begin = time.monotonic()
        open_page(page, "#step=2500")
        opened = time.monotonic() - begin
        self.assertEqual(position(), "2500")
        begin = time.monotonic()
        press(Keys.END, *[Keys.ARROW_UP] * 10)
        moved = (time.monotonic() - begin) / 11
        self.assertEqual(position(), str(length - 10))
        self.assertEqual(look("document.querySelector('#possible').textContent"),
                         f"Possible actions: {automata}")
        self.assertLess(look("document.querySelectorAll('*').length"), 3000)
        print(f"8000 automata, 5000 steps: opened in {opened:.2f} s, {moved:.3f} s for a key",
              file=sys.stderr)
        self.assertLess(opened, 4)  # two seconds, on a machine that is not busy
        self.assertLess(moved, 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
