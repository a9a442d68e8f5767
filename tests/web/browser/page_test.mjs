// The page as a person uses it, as far as only a browser can show it: what is clicked, typed, dropped and saved, where the
// focus is, and what is in view. What the page decides is tested without a browser, in tests/web/model. Most of these tests
// are sessions, in the text beside this file.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import {
  cpSync,
  mkdirSync,
  mkdtempSync,
  readdirSync,
  readFileSync,
  rmSync,
  statSync,
  utimesSync,
  writeFileSync,
} from "node:fs";
import { tmpdir } from "node:os";
import { basename, dirname, join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";
import { zipSync } from "fflate";
import { names, open } from "./browsers.mjs";

const project = fileURLToPath(new URL("../../..", import.meta.url));
const page = new URL("../../../out/packages/stashkeep.html", import.meta.url).href;
const folder = mkdtempSync(join(tmpdir(), "stashkeep-page-"));
after(() => rmSync(folder, { recursive: true }));

// The files. All of them were written at one time, which is in the names of the new files.

const written = new Date(2020, 0, 2, 3, 4);
const path = (name) => join(folder, name);
const read = (name) => readFileSync(path(name));

function write(name, bytes, time = written) {
  mkdirSync(dirname(path(name)), { recursive: true });
  writeFileSync(path(name), bytes);
  utimesSync(path(name), time, time);
}

/** Writes copies of files, in which the native program has replaced the savegame by that in a data file. */
function implant(command, data, images) {
  for (const [image, copy] of Object.entries(images)) cpSync(path(image), path(copy));
  execFileSync(join(project, "out/release/stashkeep"), [command, data, ...Object.values(images)], { cwd: folder });
  for (const copy of Object.values(images)) write(copy, read(copy));
}

/** Bytes in which one bit differs at each of these places. */
function changed(bytes, ...places) {
  const copy = Buffer.from(bytes);
  for (const at of places) copy[at] ^= 1;
  return copy;
}

cpSync(join(project, "examples"), folder, { recursive: true });
execFileSync("sh", ["make_media.sh"], { cwd: folder });
for (const name of ["disc2.d64", "disc3.d64", "game.reu", "savegame.dat"]) write(name, read(name));
for (const number of [2, 3]) write(`blank${number}.d64`, Buffer.alloc(196_608, number));
write("other.dat", changed(read("savegame.dat"), 0x158, 0x159, 0x358, 0x359)); // other money; the checksums stay
implant("implantreu", "savegame.dat", { "game.reu": "full.reu" });
implant("implantreu", "other.dat", { "game.reu": "other.reu" });
implant("implantd64", "savegame.dat", { "blank2.d64": "new2.d64", "blank3.d64": "new3.d64" });
implant("implantd64", "other.dat", { "blank2.d64": "old2.d64", "blank3.d64": "old3.d64" });
const copies = {
  ...{ "a.d64": "disc2.d64", "b.d64": "disc3.d64", "c.d64": "blank3.d64", "x.d64": "disc2.d64", "y.d64": "disc3.d64" },
  ...{ "second.reu": "game.reu", "live.dat": "savegame.dat", "mixed2.d64": "disc2.d64", "mixed3.d64": "old3.d64" },
  ...{ "backup of old, money 134, 2020-01-02 03-04-00.dat": "other.dat" },
};
for (const [copy, name] of Object.entries(copies)) write(copy, read(name));
const withNotes = (name) => Buffer.concat([read(name), Buffer.alloc(768, "notes about errors")]);
write("new3-with-notes.d64", withNotes("new3.d64"));
const floppies = { "blank2.d64": read("blank2.d64"), "blank3.d64": withNotes("blank3.d64") };
write("blank.zip", zipSync(floppies, { mtime: written }));
write("full.reu.gz", gzipSync(read("full.reu")));
mkdirSync(path("nothing"));
write("cut.d64", Buffer.alloc(174_848));
write("old.prg", Buffer.alloc(99));
for (const number of [1, 2, 3, 4]) write(`${number}.png`, "\x89PNG");
const flags = Array.from({ length: 130_000 }, (_, i) => (i === 7 ? "LONG".repeat(25_000) : `FLAG_${i}`));
write("many/scr_flags.asm", flags.map((name) => `.flag ${name}`).join("\n"));

// What a person does

/** Gives files to the page, and waits until it has looked into them. */
async function give(browser, files) {
  await browser.upload("Choose files", files.map(path)); // prettier-ignore
  await untilExamined(browser, files);
}

function untilExamined(browser, files) {
  const isExamined = (expected) => {
    const text = document.querySelector("main").textContent;
    return !document.querySelector("[aria-busy=true]") && expected.every((name) => text.includes(name));
  };
  const shown = files.map((name) => basename(name)).filter((name) => !name.endsWith(".png"));
  return browser.waitFor(isExamined, shown);
}

const focused = (browser) =>
  browser.evaluate(() => document.activeElement.ariaLabel ?? document.activeElement.innerText.split("\n")[0]);

/**
 * Drops files and folders, in Chromium as a person does. In the others no script can do that, and the files that are in the
 * folders are dropped by an event.
 */
async function drop(browser, paths) {
  if (browser.name === "chromium") {
    const client = await browser.page.createCDPSession();
    const data = { items: [], files: paths, dragOperationsMask: 1 };
    for (const type of ["dragEnter", "dragOver", "drop"]) {
      await client.send("Input.dispatchDragEvent", { type, x: 100, y: 100, data });
    }
  } else {
    const withContents = (each) =>
      statSync(each).isFile() ? [each] : readdirSync(each, { recursive: true }).map((name) => join(each, name));
    const all = paths.flatMap(withContents).filter((each) => statSync(each).isFile());
    const files = all.map((each) => [basename(each), new Uint8Array(readFileSync(each))]);
    await browser.evaluate((entries) => {
      const dataTransfer = new DataTransfer();
      for (const [name, bytes] of entries) dataTransfer.items.add(new File([bytes], name));
      document.body.dispatchEvent(new DragEvent("drop", { dataTransfer, bubbles: true, cancelable: true }));
    }, files);
  }
}

async function arrives(browser, name, expected) {
  assert.ok((await browser.download(name)).equals(read(expected)), `${name} is not like ${expected}`);
}

async function checkAccessibility(browser) {
  await browser.evaluate(() => document.querySelectorAll("details").forEach((each) => (each.open = true)));
  for (const [scheme, width] of [
    ["light", 320],
    ["dark", 800],
    ["light", 1600],
  ]) {
    // prettier-ignore
    await browser.page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
    await browser.resize(width, 800);
    assert.deepEqual(await browser.accessibilityFaults(), [], `${scheme}, ${width} pixels`);
    const isTooWide = () => document.documentElement.scrollWidth > document.documentElement.clientWidth;
    assert.ok(!(await browser.evaluate(isTooWide)), `it scrolls sideways at ${width} pixels`);
  }
  await browser.page.emulateMediaFeatures([]);
}

/** A pattern of this text, in which "..." is any text, and blanks are any white space. */
function patternOf(text) {
  const parts = text.split(" ... ").map((part) => part.replace(/[.*+?^${}()|[\]\\]/g, "\\$&").replaceAll(" ", "\\s+"));
  return new RegExp(parts.join("[^]*"));
}

const splitAt = (text, separator) => text.split(separator).map((part) => part.trim());

/** What the lines of a session do, with what follows their first word. */
const steps = {
  give: (browser, text) => give(browser, splitAt(text, " + ")),
  drop: (browser, text) => drop(browser, splitAt(text, " + ").map(path)), // prettier-ignore
  click: (browser, text) => browser.click(...splitAt(text, / in (?=From$|Into$)/)),
  choose: (browser, text) => browser.choose(...splitAt(text, " = ")),
  type: (browser, text) => browser.type(text),
  press: (browser, key) => browser.press(key),
  async tab(browser, text) {
    for (let i = 0; i < 60 && !(await focused(browser)).startsWith(text); ++i) await browser.press("Tab");
    await steps.focus(browser, text);
  },
  focus: async (browser, text) => assert.ok((await focused(browser)).startsWith(text), await focused(browser)),
  see: (browser, text) => browser.waitForText(patternOf(text)),
  not: async (browser, text) => assert.doesNotMatch(await browser.text(), patternOf(text)),
  async disabled(browser, text) {
    const [label, part] = splitAt(text, / in (?=From$)/);
    assert.ok(await browser.evaluateOn(label, part, (element) => (element.control ?? element).disabled));
  },
  async save(browser, text) {
    const [name, expected] = splitAt(text, " = ");
    await browser.click(`Save ${name}`);
    await arrives(browser, name, expected);
  },
  arrives: (browser, text) => arrives(browser, ...splitAt(text, " = ")),
  change(_, text) {
    const [name, other] = splitAt(text, " = ");
    write(name, read(other), new Date(2020, 0, 2, 15, 4));
  },
  leave: (browser) => browser.go(page),
  /** What the browser has asked, which is always answered with yes; nothing, if nothing follows. */
  asked: (browser, text) => assert.deepEqual(browser.dialogs.splice(0).join(), text),
  accessible: checkAccessibility,
};

// Each browser is started once. Each test begins with a new page.
const browsers = new Map();
after(() => Promise.all([...browsers.values()].map((browser) => browser.close())));

function testIn(engines, title, check) {
  for (const name of engines) {
    test(`${title}: ${name}`, async (t) => {
      const browser = browsers.get(name) ?? (await open(name, page));
      browsers.set(name, browser);
      await browser.go(page);
      browser.complaints.length = 0;
      browser.dialogs.length = 0;
      t.after(() => t.diagnostic(`The browser says: ${browser.complaints}`));
      await check(browser);
      assert.deepEqual(browser.complaints, []);
    });
  }
}

const testInChromium = (title, check) => testIn(["chromium"], title, check);

const sessions = readFileSync(new URL("page_test.txt", import.meta.url), "utf8").trimEnd().split("\n\n"); // prettier-ignore
for (const session of sessions) {
  const [title, ...lines] = session.split("\n");
  const [, name, all] = /^# (.*?)( \(all browsers\))?$/.exec(title);
  testIn(all ? names : ["chromium"], name, async (browser) => {
    for (const line of lines) {
      const [, word, text] = /^\$ (\S+) ?(.*)$/.exec(line);
      try {
        await steps[word](browser, text);
      } catch (error) {
        assert.fail(`${line}\n${error.message}`);
      }
    }
  });
}

/** Where the buttons to save are, and whether they can be seen there. Runs in the page. */
function lookAtSaveButtons() {
  const buttons = [...document.querySelectorAll("button")].filter(({ innerText }) => innerText.startsWith("Save "));
  return buttons.map((button) => {
    const { x, y, width, height } = button.getBoundingClientRect();
    const isOnTop = button.contains(document.elementFromPoint(x + width / 2, y + height / 2));
    return { text: button.innerText, x, y, isVisible: isOnTop && y >= 0 && y + height <= innerHeight };
  });
}

testInChromium("the buttons to save come into view, and stay where they are", async (browser) => {
  for (const [width, height] of [
    [360, 640],
    [900, 650],
    [1600, 900],
  ]) {
    // prettier-ignore
    const size = `${width} × ${height}`;
    await browser.resize(width, height);
    await give(browser, ["full.reu", "blank2.d64", "blank3.d64"]);
    await browser.click("Put the savegame into a copy of blank2.d64 and blank3.d64");
    await steps.see(browser, "Not saved yet");
    const buttons = await browser.evaluate(lookAtSaveButtons);
    const hidden = buttons.filter(({ isVisible }) => !isVisible);
    assert.deepEqual([buttons.length, hidden], [3, []], size);
    for (const [disc, text] of [
      [2, "1 of 2 saved"],
      [3, "Sent to your downloads Please look"],
    ]) {
      // prettier-ignore
      const name = `blank${disc} (savegame of full, money 125, 2020-01-02 03-04-00).d64`;
      await steps.save(browser, `${name} = new${disc}.d64`);
      await steps.see(browser, text);
      assert.deepEqual(await browser.evaluate(lookAtSaveButtons), buttons, `${size}, ${text}`);
    }
    await browser.click("Start over (no file is deleted)");
  }
});

testInChromium("what fails is reported, and works again once it can", async (browser) => {
  const breakProgram = () =>
    browser.evaluate(() => {
      globalThis.realMethod = Worker.prototype.postMessage;
      Worker.prototype.postMessage = () => {
        throw new Error("no message today");
      };
    });
  const repairProgram = () => browser.evaluate(() => void (Worker.prototype.postMessage = globalThis.realMethod));
  const put = "Put the savegame into a copy of game.reu";
  await breakProgram();
  await give(browser, ["savegame.dat"]);
  await steps.see(browser, "savegame.dat: The program could not look into it. ... no message today");
  await repairProgram();
  await give(browser, ["savegame.dat", "game.reu"]);
  await breakProgram();
  await browser.click(put);
  await steps.see(browser, "nothing was made. ... no message today");
  await steps.not(browser, "Save game");
  await repairProgram();
  await browser.click(put);
  await steps.see(browser, "Not saved yet");
  await steps.click(browser, "Start over (no file is deleted)");
  await browser.evaluate(() => void (globalThis.DecompressionStream = undefined));
  await browser.click("Try it with examples");
  await steps.see(browser, "That did not work. TypeError: DecompressionStream is not a constructor");
});

testInChromium("a run that does not end can be stopped, and the next one works", async (browser) => {
  await give(browser, ["other.dat"]);
  await browser.evaluate(() => {
    const { postMessage } = Worker.prototype;
    Worker.prototype.postMessage = () => (Worker.prototype.postMessage = postMessage); // the first message is lost
  });
  await browser.upload("Choose files", [path("savegame.dat")]);
  await browser.click("Stop");
  await browser.click("1 file that cannot be used as it is");
  await steps.see(browser, "The program could not look into it. ... You have stopped it");
  await give(browser, ["savegame.dat"]);
  await steps.see(browser, "Found: 2 savegames");
});

testInChromium("files with strange names are shown as they are, moved and saved", async (browser) => {
  const cases = [
    { name: "line\nbreak.reu", shown: "line␊break.reu", saved: "line_break" },
    { name: `${"ü".repeat(125)}.fbn`, shown: `${"ü".repeat(45)}…${"ü".repeat(41)}.fbn`, saved: "ü".repeat(40) },
  ];
  write("<b>'\"&.dat", read("savegame.dat"));
  for (const { name } of cases) write(name, read("game.reu"));
  await browser.upload("Choose files", [path("<b>'\"&.dat"), ...cases.map(({ name }) => path(name))]);
  for (const { name, shown, saved } of cases) {
    await browser.click(shown, "Into");
    await browser.click(`Put the savegame into a copy of ${shown}`);
    const suffix = `(savegame of _b_'_&, money 125, 2020-01-02 03-04-00)${name.slice(-4)}`;
    await steps.save(browser, `${saved} ${suffix} = full.reu`);
  }
});

testInChromium("a part of the page that cannot be shown says so, and the others go on", async (browser) => {
  await browser.evaluate(() => {
    const { toLocaleString } = Number.prototype;
    Number.prototype.toLocaleString = function (...args) {
      if (Number(this) === 1024) throw new Error("not this number");
      return toLocaleString.call(this, ...args);
    };
  });
  await browser.upload("Choose files", [path("savegame.dat"), path("game.reu")]);
  await steps.see(browser, "1. Your files ... This part of the page cannot be shown. ... not this number");
  await browser.click("Put the savegame into a copy of game.reu");
  await steps.save(browser, "game (savegame of savegame, money 125, 2020-01-02 03-04-00).reu = full.reu");
});

testIn(names, "files that are added move neither the caret nor the page, and close nothing", async (browser) => {
  await give(browser, ["savegame.dat"]);
  const folded = "Every command that was run, and exactly what the program printed";
  await browser.click(folded);
  await browser.click("Search items and flags");
  await browser.type("xyz"); // finds nothing, before and after
  await browser.press("ArrowLeft");
  const look = () =>
    browser.evaluate(() => {
      const { value, selectionStart } = document.activeElement;
      return { value, selectionStart, y: Math.round(document.activeElement.getBoundingClientRect().y) };
    });
  const { y } = await look();
  await browser.upload("Choose files", ["disc2.d64", "disc3.d64", "game.reu"].map(path)); // prettier-ignore
  await browser.type("n");
  await untilExamined(browser, ["game.reu"]);
  const now = await look();
  assert.deepEqual([now.value, now.selectionStart], ["xynz", 3]);
  assert.ok(Math.abs(now.y - y) <= 1, `it stood at ${y}, and is at ${now.y} now`); // there are fractions of pixels
  assert.ok(await browser.evaluateOn(folded, undefined, (summary) => summary.parentElement.open));
});
