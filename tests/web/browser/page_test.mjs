// The page as a person uses it, as far as only a browser can show it: what is clicked, typed, dropped and saved, where the
// focus is, and what is in view. What the page decides is tested without a browser, in tests/web/model.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { cpSync, mkdirSync, mkdtempSync, readFileSync, rmSync, utimesSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { basename, dirname, join } from "node:path";
import { after, test } from "node:test";
import { gzipSync } from "node:zlib";
import { zipSync } from "fflate";
import { fileURLToPath } from "node:url";
import { names, open } from "./browsers.mjs";

const project = fileURLToPath(new URL("../../..", import.meta.url));
const page = new URL("../../../out/packages/stashkeep.html", import.meta.url).href;
const folder = mkdtempSync(join(tmpdir(), "stashkeep-page-"));
after(() => rmSync(folder, { recursive: true }));

// The files. All of them were written at one time, which is in the names of the new files.

const written = new Date(2020, 0, 2, 3, 4);
const when = "2020-01-02 03-04-00";
const path = (name) => join(folder, name);
const read = (name) => readFileSync(path(name));

/** Writes a file, and returns its path. */
function write(name, bytes, time = written) {
  mkdirSync(dirname(path(name)), { recursive: true });
  writeFileSync(path(name), bytes);
  utimesSync(path(name), time, time);
  return path(name);
}

/** Copies of files in which the native program has replaced the savegame by that in a data file. */
function implanted(command, data, ...images) {
  const copies = images.map((image, i) => `copy${i}`);
  copies.forEach((copy, i) => cpSync(images[i], path(copy)));
  execFileSync(join(project, "out/release/stashkeep"), [command, data, ...copies], { cwd: folder });
  return copies.map(read);
}

/** Bytes in which one bit differs at each of these places. */
function changed(bytes, ...places) {
  const copy = Buffer.from(bytes);
  for (const at of places) copy[at] ^= 1;
  return copy;
}

cpSync(join(project, "examples"), folder, { recursive: true });
execFileSync("sh", ["make_media.sh"], { cwd: folder });
const [disc2, disc3, empty, backup] = ["disc2.d64", "disc3.d64", "game.reu", "savegame.dat"].map((name) =>
  write(name, read(name)),
);
const [blank2, blank3] = [2, 3].map((number) => write(`blank${number}.d64`, Buffer.alloc(196_608, number)));
const full = write("full.reu", implanted("implantreu", "savegame.dat", empty)[0]);
const moneyPlaces = [0x158, 0x159, 0x358, 0x359]; // its tens and units on both discs; their XOR stays
const other = write("other.dat", changed(read("savegame.dat"), ...moneyPlaces));
const sources = ["flags", "collectableids", "globaldefines"].map((name) =>
  path(`scripts/common/global/scr_${name}.asm`),
);
const included = ["village", "mansion", "mountains"].map((name) => path(`generated/worldflags_${name}.inc`));

// What stands on the page

const put = (title) => `Put the savegame into a copy of ${title}`;
const replace = (title) => `${put(title)}, and back up the old one`;
const onlyBackup = "Only a backup file";
const copyOf = (stem, origin, extension, money = 125) =>
  `${stem} (savegame of ${origin}, money ${money}, ${when}).${extension}`;
const backupOf = (origin, money = 125) => `backup of ${origin}, money ${money}, ${when}.dat`;

/** Gives files to the page, and waits until it has looked into them. */
async function give(browser, ...paths) {
  await browser.upload("Choose files", paths);
  await untilExamined(browser, paths);
}

function untilExamined(browser, paths) {
  const isExamined = (expected) => {
    const text = document.querySelector("main").textContent;
    return !document.querySelector("[aria-busy=true]") && expected.every((name) => text.includes(name));
  };
  return browser.waitFor(isExamined, paths.map((each) => basename(each))); // prettier-ignore
}

async function save(browser, name) {
  await browser.click(`Save ${name}`);
  return browser.download(name);
}

const focused = (browser) =>
  browser.evaluate(() => document.activeElement.ariaLabel ?? document.activeElement.innerText.split("\n")[0]);

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
      t.after(() => t.diagnostic(`The browser says: ${browser.complaints}`));
      await check(browser);
      assert.deepEqual(browser.complaints, []);
    });
  }
}

const testInChromium = (title, check) => testIn(["chromium"], title, check);

// It is the first one: in Firefox, keys are sometimes lost after another page was left.
testIn(names, "a savegame moves from floppies to a memory expansion, by keyboard alone", async (browser) => {
  async function goTo(pattern) {
    for (let i = 0; i < 60 && !pattern.test(await focused(browser)); ++i) await browser.press("Tab");
    assert.match(await focused(browser), pattern);
  }
  await goTo(/^Try it with examples$/);
  await browser.press("Enter");
  await browser.waitForText(/^Put the savegame/m);
  assert.doesNotMatch(await browser.text(), /needs JavaScript/);
  await goTo(/^Put the savegame into a copy of game.reu$/);
  await browser.press("Enter");
  await browser.waitForText(/^Not saved yet$/m);
  assert.equal(await focused(browser), "Not saved yet");
  await goTo(/^Save game/);
  const name = (await focused(browser)).slice("Save ".length);
  await browser.press("Enter");
  assert.ok((await browser.download(name)).equals(read("full.reu")));
});

testIn(
  names,
  "a savegame moves from a packed memory expansion to packed floppies, all saved at once",
  async (browser) => {
    const notes = Buffer.alloc(768, "notes about errors");
    const discs = { "blank2.d64": read("blank2.d64"), "blank3.d64": Buffer.concat([read("blank3.d64"), notes]) };
    await give(
      browser,
      write("full.reu.gz", gzipSync(read("full.reu"))),
      write("a.zip", zipSync(discs, { mtime: written })),
    );
    await browser.click(put("a.zip/blank2.d64 and blank3.d64"));
    await browser.waitForText(/The new files will be saved beside the archive/);
    await browser.click("Save all 2 files");
    const [made2, made3] = implanted("implantd64", "savegame.dat", blank2, blank3);
    assert.ok((await browser.download(copyOf("blank2", "full", "d64"))).equals(made2));
    assert.ok((await browser.download(copyOf("blank3", "full", "d64"))).equals(Buffer.concat([made3, notes])));
  },
);

testInChromium("a replaced savegame is saved too, and can be put back", async (browser) => {
  const old = implanted("implantd64", "other.dat", blank2, blank3).map((bytes, i) => write(`old${i + 2}.d64`, bytes));
  await give(browser, full, ...old);
  await browser.click("full.reu", "From");
  await browser.click("old2.d64 and old3.d64", "Into");
  await browser.waitForText(/is replaced[^]*Money\s+134\s+125/);
  await browser.click(replace("old2.d64 and old3.d64"));
  await browser.click("Save all 3 files");
  const made = [];
  for (const [i, bytes] of implanted("implantd64", "savegame.dat", ...old).entries()) {
    const saved = await browser.download(copyOf(`old${i + 2}`, "full", "d64"));
    assert.ok(saved.equals(bytes));
    made.push(write(`now${i + 2}.d64`, saved));
  }
  const backupName = backupOf("old", 134);
  const kept = write(backupName, await browser.download(backupName));
  assert.ok(read(backupName).equals(read("other.dat")));

  await browser.click("Start over (no file is deleted)");
  await give(browser, ...made, kept);
  await browser.click(backupName, "From");
  await browser.click("now2.d64 and now3.d64", "Into");
  await browser.click(replace("now2.d64 and now3.d64"));
  for (const disc of [2, 3]) {
    const restored = await save(browser, copyOf(`now${disc}`, "old", "d64", 134));
    assert.ok(restored.equals(read(`old${disc}.d64`)));
  }
});

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
  const sizes = [
    [360, 640],
    [900, 650],
    [1600, 900],
  ];
  for (const [width, height] of sizes) {
    await browser.resize(width, height);
    await give(browser, full, blank2, blank3);
    await browser.click(put("blank2.d64 and blank3.d64"));
    await browser.waitForText(/^Not saved yet$/m);
    const buttons = await browser.evaluate(lookAtSaveButtons);
    const hidden = buttons.filter(({ isVisible }) => !isVisible);
    assert.deepEqual([buttons.length, hidden], [3, []], `${width} × ${height}`);
    for (const [disc, says] of [
      [2, /^1 of 2 saved\s+Both discs are needed[^]*sent to your downloads[^]*not saved yet/m],
      [3, /^Sent to your downloads$/m],
    ]) {
      await save(browser, copyOf(`blank${disc}`, "full", "d64"));
      await browser.waitForText(says);
      const message = `${width} × ${height}, after blank${disc}.d64 was saved`;
      assert.deepEqual(await browser.evaluate(lookAtSaveButtons), buttons, message);
    }
    await browser.click("Start over (no file is deleted)");
  }
});

testInChromium("leaving asks as long as something is not saved", async (browser) => {
  for (const discs of [[2, 3], [2]]) {
    // prettier-ignore
    await give(browser, full, blank2, blank3);
    await browser.click(put("blank2.d64 and blank3.d64"));
    for (const disc of discs) await save(browser, copyOf(`blank${disc}`, "full", "d64"));
    browser.dialogs.length = 0;
    await browser.go(page);
    assert.deepEqual(browser.dialogs, discs.length === 2 ? [] : ["beforeunload"]);
  }
});

testInChromium("what is chosen is moved, and to where it is chosen", async (browser) => {
  await give(browser, backup, other, empty, write("second.reu", read("game.reu")));
  assert.ok(await browser.evaluateOn("game.reu", "From", (element) => element.control.disabled));
  await browser.click("other.dat", "From");
  await browser.click("second.reu", "Into");
  await browser.click(put("second.reu"));
  const saved = await save(browser, copyOf("second", "other", "reu", 134));
  assert.ok(saved.equals(implanted("implantreu", "other.dat", empty)[0]));
});

testInChromium("a backup is made without putting it anywhere", async (browser) => {
  await give(browser, full);
  await browser.click(onlyBackup);
  await browser.click("Make a backup of the savegame in full.reu");
  assert.ok((await save(browser, backupOf("full"))).equals(read("savegame.dat")));
});

testInChromium("the person decides which disc is which, and agrees to what is doubtful", async (browser) => {
  const discs = [disc2, disc3, blank3].map((each, i) => write(`${"abc"[i]}.d64`, readFileSync(each)));
  await give(browser, ...discs, empty);
  await browser.click("It is disc 2: b.d64");
  await browser.choose("Disc 3", "a.d64");
  await browser.waitForText(/^Disc 2: b.d64 \(as you[^]*^Disc 3: a.d64 \(as you/m);
  await browser.click("Swap disc 2 and disc 3");
  await browser.waitForText(/^Disc 2: a.d64[^]*^Disc 3: b.d64/m);
  await browser.choose("Disc 3", "c.d64");
  await browser.click("a.d64 and c.d64", "From");
  await browser.waitForText(/Only disc 2 has a savegame[^]*Move it all the same/);
  assert.ok(await browser.evaluateOn(put("game.reu"), undefined, (button) => button.disabled));
  await browser.click("Move it all the same");
  await browser.click(put("game.reu"));
  await save(browser, copyOf("game", "a", "reu"));
  await browser.choose("Disc 2", "– none –");
  await browser.waitForText(/Disc 2 is missing[^]*No longer offered/);
});

testInChromium("nothing is made of a file that has changed on the disk, and it can be added anew", async (browser) => {
  const live = write("live.dat", read("savegame.dat"));
  await give(browser, live, empty);
  write("live.dat", read("other.dat"), new Date(2020, 0, 2, 15, 4));
  await browser.click(put("game.reu"));
  await browser.waitForText(/nothing was made. Changed since you added it: live.dat/);
  assert.doesNotMatch(await browser.text(), /^Save .*reu/m);
  await give(browser, live);
  await browser.waitForText(/live.dat of Jan 2, 2020, 3:04.AM has changed on the disk/);
  await browser.click("Close");
  await browser.click("live.dat", "From");
  await browser.click(put("game.reu"));
  const saved = await save(browser, "game (savegame of live, money 134, 2020-01-02 15-04-00).reu");
  assert.ok(saved.equals(implanted("implantreu", "other.dat", empty)[0]));
  assert.doesNotMatch(await browser.text(), /has changed on the disk/);
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
  await breakProgram();
  await give(browser, backup);
  await browser.waitForText(/savegame.dat: The program could not look into it. .*no message today/);
  await repairProgram();
  await give(browser, backup, empty);
  await breakProgram();
  await browser.click(put("game.reu"));
  await browser.waitForText(/nothing was made. .*no message today/);
  assert.doesNotMatch(await browser.text(), /^Save .*reu/m);
  await repairProgram();
  await browser.click(put("game.reu"));
  await browser.waitForText(/^Not saved yet$/m);
});

testInChromium("a run that does not end can be stopped, and the next one works", async (browser) => {
  await browser.evaluate(() => {
    const { postMessage } = Worker.prototype;
    Worker.prototype.postMessage = () => (Worker.prototype.postMessage = postMessage); // the first message is lost
  });
  await browser.upload("Choose files", [backup]);
  await browser.click("Stop");
  await browser.waitForText(/The program could not look into it. .*You have stopped it/);
  await give(browser, backup);
  await browser.waitForText(/^Found: 1 savegame/m);
});

testInChromium("files with strange names are shown as they are, moved and saved", async (browser) => {
  const strange = ["<b>'\"&.dat", "line\nbreak.reu", `${"ü".repeat(125)}.fbn`];
  const shown = ["<b>'\"&.dat", "line␊break.reu", `${"ü".repeat(32)}…${"ü".repeat(28)}.fbn`];
  const paths = [backup, empty, empty].map((each, i) => write(strange[i], readFileSync(each)));
  await browser.upload("Choose files", paths);
  for (const [i, stem] of [
    [1, "line_break"],
    [2, "ü".repeat(40)],
  ]) {
    // prettier-ignore
    await browser.click(shown[i], "Into");
    await browser.click(put(shown[i]));
    const saved = await save(browser, copyOf(stem, `_b_'_&`, strange[i].slice(-3)));
    assert.ok(saved.equals(read("full.reu")), stem);
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
  await browser.upload("Choose files", [backup, empty]);
  await browser.waitForText(/This part of the page cannot be shown. .*not this number/, "1. Your files");
  await browser.click(put("game.reu"));
  await save(browser, copyOf("game", "savegame", "reu"));
});

testInChromium("very many flags and very long names leave the page alive", async (browser) => {
  const flags = Array.from({ length: 130_000 }, (_, i) => `.flag FLAG_${i}`);
  flags[7] = `.flag ${"LONG".repeat(25_000)}`;
  await give(browser, backup, write("many/scr_flags.asm", flags.join("\n")), ...sources.slice(1), ...included);
  await browser.waitForText(/Game flags of savegame.dat: 130,000 of 130,000[^]*^129,700 more are not shown/m);
  await browser.click("Search items and flags");
  await browser.type("flag_129999");
  await browser.waitForText(/Game flags of savegame.dat: 1 of 130,000\s+Flag.*\s+FLAG_129999/);
});

/** Drops files, in Chromium as a person does, and the others by an event: no script can drop there. */
async function drop(browser, paths) {
  if (browser.name === "chromium") {
    const client = await browser.page.createCDPSession();
    const data = { items: [], files: paths, dragOperationsMask: 1 };
    for (const type of ["dragEnter", "dragOver", "drop"]) {
      await client.send("Input.dispatchDragEvent", { type, x: 100, y: 100, data });
    }
  } else {
    const files = paths.map((each) => [basename(each), new Uint8Array(readFileSync(each))]);
    await browser.evaluate((entries) => {
      const dataTransfer = new DataTransfer();
      for (const [name, bytes] of entries) dataTransfer.items.add(new File([bytes], name));
      document.body.dispatchEvent(new DragEvent("drop", { dataTransfer, bubbles: true, cancelable: true }));
    }, files);
  }
}

testIn(names, "what is dropped is read, with the folders that it is in", async (browser) => {
  const folders = [path("scripts"), path("generated")];
  await drop(browser, [backup, ...(browser.name === "chromium" ? folders : [...sources, ...included])]);
  await browser.waitForText(/Game flags of savegame.dat: 22 of 22[^]*World flags of savegame.dat: 30 of 30/);
});

testIn(names, "after Remove, the focus is on the next card", async (browser) => {
  await give(browser, backup, other, empty);
  for (const [removed, next] of [
    ["savegame.dat", "other.dat"],
    ["game.reu", "other.dat"],
    ["other.dat", "1. Your files"],
  ]) {
    await browser.click(`Remove ${removed}`);
    assert.equal(await focused(browser), next, `${removed} was removed`);
  }
});

testIn(names, "files that are added move neither the caret nor the page, and close nothing", async (browser) => {
  await give(browser, backup);
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
  await browser.upload("Choose files", [disc2, disc3, empty]);
  await browser.type("n");
  await untilExamined(browser, [empty]);
  const now = await look();
  assert.deepEqual([now.value, now.selectionStart], ["xynz", 3]);
  assert.ok(Math.abs(now.y - y) <= 1, `it stood at ${y}, and is at ${now.y} now`); // there are fractions of pixels
  assert.ok(await browser.evaluateOn(folded, undefined, (summary) => summary.parentElement.open));
});

testInChromium("what is found is said in words", async (browser) => {
  const [half2, half3] = [read("disc2.d64"), implanted("implantd64", "other.dat", blank2, blank3)[1]];
  const pair = [half2, half3].map((bytes, i) => write(`mixed${i + 2}.d64`, bytes));
  const pictures = [1, 2, 3, 4].map((number) => write(`${number}.png`, "\x89PNG"));
  await browser.upload("Choose files", [...pair, empty, backup, ...pictures, write("old.prg", Buffer.alloc(99))]);
  await browser.waitForText(/^Found: 2 savegames, 1 empty place for one, 1 file that cannot be used\.$/m);
  await browser.waitForText(/^Ignored, .*: 1.png, 2.png, 3.png, and 1 more\./m);
  assert.doesNotMatch(await browser.text(), /In the list already/);
  await browser.upload("Choose files", [backup]);
  await browser.waitForText(/In the list already, with the same date and contents: savegame.dat/);
  await browser.waitForText(/^Disc 2: mixed2.d64 \(a guess from the names\)$/m, "Two floppy discs");
  await browser.waitForText(
    /^Disc 2 and disc 3 differ in money \(125 and 134\)\. Are they of the same/m,
    "Two floppy discs",
  );
  await browser.waitForText(
    /^savegame\s+money 125 and 134, lives 7, items 8 on disc 2, 23 on disc 3$/m,
    "Two floppy discs",
  );
  await browser.waitForText(/no savegame/, "game.reu");
  await browser.click("1 file that cannot be used");
  await browser.waitForText(/old\.prg: A program, or music\./);
});

testInChromium("savegames can be looked at, compared and searched", async (browser) => {
  await give(browser, backup, other, ...included, ...[...sources].reverse());
  await browser.waitForText(/^Money\s+125\s+125$[^]*^Arrows\s+30$[^]*^FLAG_BRIDGE_STATE\s+5\s+0$/m, "3. Look");
  await browser.choose("Compare it with", "other.dat");
  await browser.waitForText(/^Disc 2: Money\s+125\s+134$/m);
  await browser.click("Search items and flags");
  await browser.type("bridge");
  await browser.waitForText(/inventory: nothing found[^]*Game flags of savegame.dat: 1 of 22\s[^]*FLAG_BRIDGE_STATE/);
  await browser.click("Look inside", "other.dat");
  await browser.waitForText(/^Game flags of other.dat: 1 of 22/m);
  assert.equal(await focused(browser), "3. Look and compare");
  await browser.click("6 texts: the game’s source files, which name its flags, or others");
  await browser.choose("scr_flags.asm is the game’s", "another file, in generated/");
  await browser.waitForText(/For the flags, these sources are missing: scr_flags.asm/);
});

testInChromium("every state is accessible and fits at every width, light and dark", async (browser) => {
  async function check(state) {
    await browser.evaluate(() => document.querySelectorAll("details").forEach((each) => (each.open = true)));
    for (const [scheme, width] of [
      ["light", 320],
      ["dark", 800],
      ["light", 1600],
    ]) {
      // prettier-ignore
      await browser.page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
      await browser.resize(width, 800);
      assert.deepEqual(await browser.accessibilityFaults(), [], `${state}, ${scheme}, ${width} pixels`);
      const isTooWide = () => document.documentElement.scrollWidth > document.documentElement.clientWidth;
      assert.ok(!(await browser.evaluate(isTooWide)), `${state} scrolls sideways at ${width} pixels`);
    }
  }
  const discs = ["a.d64", "b.d64"].map((name, i) => write(name, read(["disc2.d64", "disc3.d64"][i])));
  await check("empty");
  for (const [state, paths] of [
    ["nothing of use", [write("cut.d64", Buffer.alloc(174_848))]],
    ["one disc", [disc2]],
    ["doubtful", [...discs, empty]],
  ]) {
    await give(browser, ...paths);
    await check(state);
    await browser.click("Start over (no file is deleted)");
  }
  await give(browser, other, full);
  await browser.click("other.dat", "From");
  await browser.click("full.reu", "Into");
  await check("replacing");
  await browser.click("Start over (no file is deleted)");
  await give(browser, backup, other, empty, ...sources, ...included);
  await browser.click("savegame.dat", "From");
  await browser.choose("Compare it with", "other.dat");
  await browser.waitForText(/^Flags that differ/m);
  await browser.click(put("game.reu"));
  await browser.waitForText(/^Not saved yet$/m);
  await check("made, and compared");
  await browser.page.emulateMediaFeatures([]);
});
