// The page as a person uses it: what it says about files, what it makes, and what it refuses.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { cpSync, mkdirSync, mkdtempSync, readFileSync, rmSync, truncateSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { names, open } from "./browsers.mjs";

const project = fileURLToPath(new URL("../../..", import.meta.url));
const program = join(project, "out/release/stashkeep");
const page = new URL("../../../out/packages/stashkeep.html", import.meta.url).href;
const folder = mkdtempSync(join(tmpdir(), "stashkeep-page-"));
after(() => rmSync(folder, { recursive: true }));

cpSync(join(project, "examples"), folder, { recursive: true });
execFileSync("sh", ["make_media.sh"], { cwd: folder });
const read = (name) => readFileSync(join(folder, name));
const stashkeep = (...args) => execFileSync(program, args, { cwd: folder, encoding: "utf8" });

/** Writes a file, and returns its path. */
function write(name, bytes) {
  const path = join(folder, name);
  mkdirSync(dirname(path), { recursive: true });
  writeFileSync(path, bytes);
  return path;
}

/** A copy of a file in which one bit differs. */
function changed(name, at) {
  const bytes = read(name);
  bytes[at] ^= 1;
  return bytes;
}

const path = (name) => join(folder, name);
const blankDisc2 = write("new2.d64", Buffer.alloc(196_608, 2));
const blankDisc3 = write("new3.d64", Buffer.alloc(196_608, 3));
const disc2 = path("disc2.d64");
const disc3 = path("disc3.d64");
const reu = path("game.reu");
const make = "Put the savegame into a copy of game.reu";
cpSync(reu, path("saved.reu"));
stashkeep("implantreu", "savegame.dat", "saved.reu");
const sources = ["flags", "collectableids", "globaldefines"].map((name) =>
  path(`scripts/common/global/scr_${name}.asm`),
);
const included = ["village", "mansion", "mountains"].map((name) => path(`generated/worldflags_${name}.inc`));

/** Gives files to the page, and waits until it has looked into them. */
async function give(browser, paths) {
  await browser.upload("#files-input", paths);
  await browser.waitFor((count) => {
    const listed = document.querySelectorAll(".file").length;
    return listed >= count && !document.querySelector("[aria-busy]");
  }, paths.length);
}

const textOf = (browser) => browser.evaluate(() => document.querySelector("main").innerText);
const buttonsOf = (browser) =>
  browser.evaluate(() => [...document.querySelectorAll("button:enabled")].map(({ textContent }) => textContent));

/** Opens the page with files, has `check` look at it, and closes it. */
async function withPage(name, paths, check) {
  const browser = await open(name, page);
  try {
    if (paths.length > 0) await give(browser, paths);
    await check(browser);
    assert.deepEqual(browser.complaints ?? [], []);
  } catch (error) {
    throw new Error(`${error.message}\nThe browser says: ${browser.complaints}`, { cause: error });
  } finally {
    await browser.close();
  }
}

for (const name of names) {
  test(`a savegame moves from floppies to a REU image, as with the command line: ${name}`, () =>
    withPage(name, [reu, disc3, disc2], async (browser) => {
      await browser.click("Put the savegame into a copy of game.reu");
      await browser.click("Save game-with-savegame.reu");
      const saved = await browser.download("game-with-savegame.reu");
      assert.ok(saved.equals(read("saved.reu")));
    }));

  test(`a savegame moves from a REU image to floppies, as with the command line: ${name}`, () =>
    withPage(name, [blankDisc3, path("saved.reu"), blankDisc2], async (browser) => {
      await browser.click("Put the savegame into a copy of new2.d64 and new3.d64");
      for (const [made, old] of [
        ["new2-with-savegame.d64", "new2.d64"],
        ["new3-with-savegame.d64", "new3.d64"],
      ]) {
        await browser.click(`Save ${made}`);
        cpSync(path(old), path(made));
      }
      stashkeep("implantd64", "savegame.dat", "new2-with-savegame.d64", "new3-with-savegame.d64");
      for (const made of ["new2-with-savegame.d64", "new3-with-savegame.d64"]) {
        assert.ok((await browser.download(made)).equals(read(made)), made);
      }
    }));
}

const noSavegame = "There is no savegame here: save in the game first.";
const noPlace = "no savegame and no place for one. Start the game once with this image";
const accepted = "Accepted are floppy images of 40 tracks (196,608 bytes)";
const tracks35 = ["floppy image of 35 tracks", "The original image is needed", "not a valid Zarnis 40 tracks d64."];

const refused = [
  { gives: "one floppy image", files: { "disc2.d64": read("disc2.d64") }, says: ["Disc 3 is missing"] },
  {
    gives: "the same file for both discs of the source",
    files: { "disc2.d64": read("disc2.d64"), "disc3.d64": read("disc2.d64"), "game.reu": read("game.reu") },
    says: ["disc2.d64 and disc3.d64 have the same contents", "Both discs have the same contents."],
  },
  {
    gives: "the same file for both discs of the target",
    files: { "new2.d64": read("new2.d64"), "new3.d64": read("new2.d64"), "saved.reu": read("saved.reu") },
    says: ["new2.d64 and new3.d64 have the same contents", "Both discs have the same contents."],
  },
  { gives: "35 tracks", files: { "a.d64": Buffer.alloc(174_848) }, says: ["174,848 bytes", ...tracks35] },
  {
    gives: "35 tracks with error bytes",
    files: { "a.d64": Buffer.alloc(175_531) },
    says: ["175,531 bytes", ...tracks35],
  },
  {
    gives: "a memory image whose pointers lead out",
    files: { "game.reu": Buffer.alloc(131_072, 0xff) },
    says: [noPlace, "not a valid Zarnis memory image."],
  },
  { gives: "a memory image with nothing in it", files: { "game.reu": Buffer.alloc(131_072) }, says: [noPlace] },
  {
    gives: "a source without a savegame",
    files: { "disc2.d64": read("new2.d64"), "disc3.d64": read("new3.d64"), "game.reu": read("game.reu") },
    says: [noSavegame, "validsavegame:<$02> should be $55"],
    never: "undamaged",
  },
  {
    gives: "a data file of another length",
    files: { "a.dat": Buffer.alloc(600) },
    says: ["it has 600 bytes", accepted],
  },
  {
    gives: "an empty file",
    files: { "a.d64": Buffer.alloc(0) },
    says: ["This file is empty: it has 0 bytes.", accepted],
  },
];

for (const { gives, files, says, never } of refused) {
  test(`refuses, and says why: ${gives}`, async () => {
    const paths = Object.entries(files).map(([name, bytes]) => write(join("refused", name), bytes));
    await withPage("chromium", paths, async (browser) => {
      const text = await textOf(browser);
      for (const words of says) assert.ok(text.includes(words), `"${words}" is not in:\n${text}`);
      if (never) assert.ok(!text.includes(never), text);
      const buttons = await buttonsOf(browser);
      assert.deepEqual(
        buttons.filter((button) => /^(Put|Save)/.test(button)),
        [],
      );
    });
  });
}

test("uses an image with error bytes without them, and puts them back unchanged", async () => {
  const errorBytes = Buffer.alloc(768, "error bytes");
  const discs = ["2", "3"].map((n) => write(`errors${n}.d64`, Buffer.concat([read(`new${n}.d64`), errorBytes])));
  await withPage("chromium", [path("savegame.dat"), ...discs], async (browser) => {
    assert.match(await textOf(browser), /Its last 768 bytes are error bytes. The image is used without them/);
    await browser.click("Put the savegame into a copy of errors2.d64 and errors3.d64");
    await browser.click("Save errors3-with-savegame.d64");
    const saved = await browser.download("errors3-with-savegame.d64");
    assert.ok(saved.subarray(0, 256).equals(read("savegame.dat").subarray(512, 768)));
    assert.ok(saved.subarray(196_608).equals(errorBytes));
    assert.match(await textOf(browser), /Its last 768 bytes are the error bytes of errors3.d64, unchanged./);
  });
});

const saved2 = read("disc2.d64");
const doubtful = [
  {
    has: "one disc only",
    discs: { "disc2.d64": saved2, "disc3.d64": read("new3.d64") },
    says: "Only disc 2 has a savegame; disc 3 has none (disc2.d64 and disc3.d64).",
  },
  {
    has: "damaged flags",
    discs: { "disc2.d64": saved2, "disc3.d64": changed("disc3.d64", 0) },
    says: "Disc 3: the checksum of part 1 (the flags) is wrong",
  },
  {
    has: "damaged items",
    discs: { "disc2.d64": saved2, "disc3.d64": changed("disc3.d64", 1024) },
    says: "Disc 3: the checksum of part 2 (money, lives and items) is wrong",
  },
  {
    has: "an order that nothing says",
    discs: { "a.d64": saved2, "b.d64": read("disc3.d64") },
    says: "Nothing says whether a.d64 or b.d64 is disc 2.",
  },
];

for (const { has, discs, says } of doubtful) {
  test(`moves a doubtful savegame only after an explicit choice: ${has}`, async () => {
    const paths = Object.entries(discs).map(([name, bytes]) => write(join("doubtful", name), bytes));
    await withPage("chromium", [...paths, reu], async (browser) => {
      assert.ok((await textOf(browser)).includes(says));
      assert.ok(!(await buttonsOf(browser)).includes(make));
      await browser.click("Move it all the same");
      await browser.click(make);
      await browser.click("Save game-with-savegame.reu");
    });
  });
}

test("swaps two discs with one button, and takes their savegame out", () =>
  withPage("chromium", [disc2, disc3], async (browser) => {
    await browser.click("Swap disc 2 and disc 3");
    await browser.click("Make a savegame data file of disc3.d64 and disc2.d64");
    await browser.click("Save zarnis-savegame.dat");
    const data = read("savegame.dat");
    const swapped = Buffer.concat([data.subarray(512), data.subarray(0, 512)]);
    assert.ok((await browser.download("zarnis-savegame.dat")).equals(swapped));
  }));

test("makes nothing of a file that has changed on the disk since it was added", () =>
  withPage("chromium", [write("live.dat", read("savegame.dat")), reu], async (browser) => {
    write("live.dat", changed("savegame.dat", 0));
    await browser.click(make);
    await browser.waitFor(() => document.body.innerText.includes("live.dat has changed since you added it"));
    assert.ok(!(await buttonsOf(browser)).some((text) => text.startsWith("Save")));
  }));

test("says which files it cannot read, and works with the others", () =>
  withPage("chromium", [path("savegame.dat")], async (browser) => {
    write("huge.reu", "");
    truncateSync(path("huge.reu"), 256 * 1024 * 1024 + 1);
    await give(browser, [path("huge.reu"), reu]);
    await browser.evaluate(() => {
      const folderAsFile = new File([], "folder");
      folderAsFile.arrayBuffer = () => Promise.reject(new DOMException("not a file", "NotReadableError"));
      const input = document.getElementById("files-input");
      Object.defineProperty(input, "files", { value: [folderAsFile], configurable: true });
      input.dispatchEvent(new Event("change"));
      delete input.files;
    });
    await browser.waitFor(() => document.querySelectorAll(".file").length === 4);
    const text = await textOf(browser);
    assert.match(text, /huge.reu[^]*This file is too large: it has 268,435,457 bytes; at most 256 MiB can be read/);
    assert.match(text, /folder[^]*This file cannot be read/);
    assert.ok((await buttonsOf(browser)).includes(make));
  }));

test("keeps two files of one name apart", async () => {
  const other = write("other/game.reu", read("saved.reu"));
  await withPage("chromium", [reu, other], async (browser) => {
    await browser.click(make);
    await browser.click("Save game-with-savegame.reu");
    assert.ok((await browser.download("game-with-savegame.reu")).equals(read("saved.reu")));
  });
});

test("reads a folder that is dropped, with its subfolders", () =>
  withPage("chromium", [path("savegame.dat")], async (browser) => {
    const client = await browser.page.createCDPSession();
    const data = { items: [], files: [path("scripts"), path("generated")], dragOperationsMask: 1 };
    for (const type of ["dragEnter", "dragOver", "drop"]) {
      await client.send("Input.dispatchDragEvent", { type, x: 100, y: 100, data });
    }
    await browser.waitFor(() => document.querySelectorAll(".file").length === 7);
    assert.match(await textOf(browser), /Game flags: 22 of 22[^]*World flags: 30 of 30/);
  }));

const intoReu = { paths: [path("savegame.dat"), reu], name: "game-with-savegame.reu", press: make };
const takeOut = "Make a savegame data file of saved.reu";
const spoiled = [
  { ...intoReu, what: "a byte of the savegame in the new image", at: 0x200000 },
  { ...intoReu, what: "another byte of the new image", at: 5 },
  { paths: [path("saved.reu")], name: "zarnis-savegame.dat", press: takeOut, what: "a byte of the data file", at: 300 },
];

/** Runs in the page: in the first result that has this file, a bit of it is wrong. */
function spoilOnce(name, offset) {
  const { set } = Object.getOwnPropertyDescriptor(Worker.prototype, "onmessage");
  let isSpoiled = false;
  function setSpoiling(listener) {
    set.call(this, (event) => {
      const file = event.data.files.find(([candidate]) => candidate === name);
      if (file && !isSpoiled) file[1][offset] ^= 1;
      isSpoiled ||= Boolean(file);
      listener(event);
    });
  }
  Object.defineProperty(Worker.prototype, "onmessage", { set: setSpoiling });
}

for (const { what, paths, name, press, at } of spoiled) {
  test(`offers nothing if this is wrong: ${what}`, () =>
    withPage("chromium", paths, async (browser) => {
      await browser.evaluate(spoilOnce, name, at);
      await browser.click(press);
      await browser.waitFor(() => document.getElementById("make-failure").textContent.includes("nothing was made"));
      assert.ok(!(await buttonsOf(browser)).some((text) => text.startsWith("Save")));
    }));
}

test("says that the program cannot run, and works again once it can", () =>
  withPage("chromium", [], async (browser) => {
    await browser.evaluate(() => {
      globalThis.realWorker = Worker;
      globalThis.Worker = class {
        constructor() {
          throw new Error("no worker today");
        }
      };
    });
    await give(browser, [path("savegame.dat")]);
    assert.match(await textOf(browser), /The program could not look into this file. .*no worker today/);
    await browser.evaluate(() => (globalThis.Worker = globalThis.realWorker) && true);
    await give(browser, [path("savegame.dat"), reu]);
    assert.ok((await buttonsOf(browser)).includes(make));
  }));

test("shows what check prints, in tables", () =>
  withPage("chromium", [path("savegame.dat"), ...included, ...[...sources].reverse()], async (browser) => {
    const printed = stashkeep("check", "savegame.dat", ...sources).split("\n");
    const rowsOf = (pattern) => printed.map((line) => pattern.exec(line)?.slice(1)).filter(Boolean);
    const shown = await browser.evaluate(() => {
      const textOfRow = (row) => [...row.cells].map(({ textContent }) => textContent);
      const tables = [...document.querySelectorAll("#report table")];
      const title = (table) => table.caption.textContent;
      return Object.fromEntries(tables.map((table) => [title(table), [...table.tBodies[0].rows].map(textOfRow)]));
    });
    const flags = rowsOf(/^(\w+) = (-?\d+)$/);
    const half = flags.length / 2; // disc 2, then disc 3
    const bothDiscs = flags.slice(0, half).map(([name, value], i) => [name, value, flags[half + i][1]]);
    assert.deepEqual([...shown["Game flags: 22 of 22"], ...shown["World flags: 30 of 30"]], bothDiscs);

    const items = rowsOf(/^(\d+)_item:(\d+)<(?:COLLECTABLE_)?(\w+)> count:(\d+)/);
    const slots = items.map(([slot, id, name, count]) => [slot, name === "undefined" ? id : name, count]);
    const tablesOf = (disc) => ["inventory", "not in use", "chest"].flatMap((title) => shown[`${disc}: ${title}`]);
    assert.deepEqual([...tablesOf("Disc 2"), ...tablesOf("Disc 3")], slots);

    const values = shown.Values.map(([, disc2Value, disc3Value]) => [disc2Value, disc3Value]);
    assert.deepEqual(values.slice(0, 5), [
      ["125", "125"],
      ["7", "7"],
      ["12", "12"],
      ["8", "23"],
      ["3", "17"],
    ]);

    await browser.evaluate(() => {
      const field = document.getElementById("flag-search");
      field.value = "bridge";
      field.dispatchEvent(new Event("input"));
    });
    assert.match(await textOf(browser), /Game flags: 1 of 22\n[^]*FLAG_BRIDGE_STATE\t5\t0\n/);
  }));

const sourceProblems = [
  { of: "a missing source", files: sources.slice(0, 2), says: "these sources are missing: scr_globaldefines.asm" },
  { of: "a missing included file", files: sources, says: "not found: generated/worldflags_village.inc" },
  {
    of: "a source that fails",
    files: [...sources.slice(1), ...included, write("broken/scr_flags.asm", ".flags A B")],
    says: "generateSaveGame flags.asm file problem!",
  },
  {
    of: "an empty list",
    files: [...sources.slice(0, 2), write("broken/scr_globaldefines.asm", "nothing")],
    says: "No world flags were found",
  },
];

for (const { of, files, says } of sourceProblems) {
  test(`says why flags are missing, because of ${of}`, () =>
    withPage("chromium", [path("savegame.dat"), ...files], async (browser) => {
      const text = await textOf(browser);
      assert.ok(text.includes(says), text);
    }));
}

test("works by keyboard alone, and moves the focus to the result", () =>
  withPage("chromium", [], async (browser) => {
    const focused = () => browser.evaluate(() => document.activeElement.textContent);
    const goTo = async (text) => {
      for (let i = 0; i < 60 && (await focused()) !== text; ++i) await browser.press("Tab");
      assert.equal(await focused(), text);
    };
    await goTo("Try it with examples");
    await browser.press("Enter");
    await browser.waitFor(() => document.getElementById("make-button"));
    await goTo("Put the savegame into a copy of examples/game.reu");
    await browser.press("Enter");
    await browser.waitFor(() => document.activeElement.id === "result-heading");
    assert.equal(await focused(), "Ready to be saved: game-with-savegame.reu");
    await goTo("Save game-with-savegame.reu");
    await browser.press("Enter");
    assert.ok((await browser.download("game-with-savegame.reu")).equals(read("saved.reu")));
  }));

const states = {
  empty: [],
  "one disc": [disc2],
  ready: [disc2, disc3, path("saved.reu")],
  refused: [write("a.d64", Buffer.alloc(174_848)), write("empty", "")],
  doubtful: [disc2, blankDisc3, reu],
  flags: [path("savegame.dat"), reu, ...sources, ...included],
  made: [path("savegame.dat"), reu],
};

for (const [state, paths] of Object.entries(states)) {
  test(`is accessible and fits at every width, light and dark: ${state}`, () =>
    withPage("chromium", paths, async (browser) => {
      if (state === "made") await browser.click(make);
      if (state === "made") await browser.waitFor(() => document.getElementById("result-heading"));
      await browser.evaluate(() => document.querySelectorAll("details").forEach((details) => (details.open = true)));
      for (const scheme of ["light", "dark"]) {
        await browser.page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
        for (const width of [320, 800, 1600]) {
          await browser.resize(width, 800);
          assert.deepEqual(await browser.accessibilityFaults(), [], `${scheme}, ${width} pixels`);
          const isTooWide = () => document.documentElement.scrollWidth > document.documentElement.clientWidth;
          assert.ok(!(await browser.evaluate(isTooWide)), `scrolls sideways at ${width} pixels`);
        }
      }
    }));
}
