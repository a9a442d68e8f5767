// The page runs the same program: what its function `stashkeep` gives is compared with what the native program does.
import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import { readFileSync } from "node:fs";
import test from "node:test";
import {
  examples,
  floppyImage,
  memoryImage,
  pages,
  run as runNatively,
  savegame,
  testFiles,
} from "../program/native.mjs";
import { names as browserNames, open } from "./browsers.mjs";

const page = new URL("../../../out/packages/stashkeep.html", import.meta.url).href;
const MiB = 1024 * 1024;
const toLatin1 = (bytes) => Buffer.from(bytes).toString("latin1");
const toBytes = (text, encoding) => new Uint8Array(Buffer.from(text, encoding));

const texts = {
  ...{ empty: "", flags: ".flag A", ids: "B = 2", w: "W = 3", "generated/w": "W = 4", "generated/a/w": "W = 5" },
  ...{ "generated\\b\\w": "W = 6", "generated\\c/w": "W = 7", "generated/\ufffd": "W = 8" },
  latin1: "#AsmSectionBegin include \xff",
};
const image = memoryImage([0x1200, 0x1300, 0x1400, 0x1f00], 0x2000);
const allFiles = {
  ...{ ...examples, data: savegame, image },
  ...{ Disc2: floppyImage(savegame.subarray(0, 512)), ディスク3: floppyImage(savegame.subarray(512)) },
  ...Object.fromEntries(Object.entries(texts).map(([name, text]) => [name, toBytes(text, "latin1")])),
};

/** Arguments, and the files that they may name or include. A number is the name of a file of that size. */
function runOf(args, all = allFiles) {
  const isNamed = (name) => args.some((arg) => arg.toLowerCase().includes(name.toLowerCase()));
  const used = Object.entries(all).filter(([name]) => isNamed(name) || name.startsWith("generated"));
  const sizes = args.filter((arg) => /^\d+$/.test(arg));
  return [args, Object.fromEntries([...used, ...sizes.map((size) => [size, pages(Number(size))])])];
}

/** The runs of a console session, each with the files that are written before it. */
function runsOfSession(session) {
  const all = { ...allFiles };
  const symbols = { "⏎": "\n", "␍": "\r", "⇥": "\t", "␋": "\v", "␌": "\f", "␀": "\0" };
  return [...session.matchAll(/^\$ (?:stashkeep|write (\S+)) (.*)$/gm)].flatMap(([, name, rest]) => {
    if (name === undefined) return [runOf(rest.split(" "), all)];
    all[name] = toBytes(rest.replace(/[⏎␍⇥␋␌␀]/g, (symbol) => symbols[symbol]));
    return [];
  });
}

const sessionNames = /^(cli|symbols|transfer|web\/browser)\/.*_test\.txt$/;
const sessions = Object.entries(testFiles).flatMap(([name, bytes]) =>
  sessionNames.test(name) ? String(Buffer.from(bytes)) : [],
);
// At the end of the image, outside, also as signed numbers, and to pages that overlap others
const pointers = [0x1f00, 0x1f01, 0x80002034, 0xffffffff, 0x1210, 0x1080];
const oddNames = [
  ...["__proto__", "constructor", "a/b/c", "a\\b", " ", "two words", "line\nbreak", "%41", "%s", "-", "*", "'\"", "~"],
  ...["ü.d64", "u\u0308.d64", "😀", "\u202e", "\x7f", "...", "\ufeffa byte order mark", "\ufffd", "ü".repeat(127)],
];
const longPaths = [
  ...["", "n".repeat(255), "n".repeat(256), "ü".repeat(128), "€".repeat(30_000)],
  ...[`${"./".repeat(2044)}//image`, `${"./".repeat(2045)}/image`],
];

const runsOfPointer = (pointer) => {
  const all = { ...allFiles, image: memoryImage([0x1200, 0x1300, pointer, 0x1220], 0x2000) };
  return [runOf(["extractreu", "image", "new"], all), runOf(["implantreu", "data", "image"], all)];
};
const runsOfOddName = (name) => [
  [["check", name], { [name]: savegame }],
  [["extractreu", "image", name], { image }],
];
const runsOfPath = (path) => [runOf(["check", path]), runOf(["extractreu", "image", path])];
const runs = {
  "console sessions": sessions.flatMap(runsOfSession),
  pointers: pointers.flatMap(runsOfPointer),
  "odd names": oddNames.flatMap(runsOfOddName),
  "long paths": longPaths.flatMap(runsOfPath),
};

const impossibleNames = [
  ...["", ".", "..", "../x", "/x", "a//b", "a/", "a/../b", "\0", "\ud800"],
  ...["n".repeat(256), "ü".repeat(128), `${"a/".repeat(2047)}ab`],
];
const outside = ["/a", "//a", "../a", "a/../../a", "..", "/dev/tty", "/dev/../files/a"];
const included = {
  data: savegame,
  ids: toBytes(""),
  "generated/w": toBytes(""),
  world: toBytes("#AsmSectionBegin include ../../w"),
};
/** Arguments, the contents of files or their sizes, and what the error says. */
const impossibleCalls = [
  ...impossibleNames.map((name) => [["check"], { [name]: 0 }, `"${name}" cannot be the name of a file`]),
  [["check"], { a: 0, "a/b": 0 }, '"a/b" cannot be the name of a file beside the others'],
  [["check"], { a: "text" }, 'contents of "a" must be a Uint8Array'],
  [["check"], { a: 256 * MiB + 1 }, '"a" has 268435457 bytes; at most 268435456 are possible'],
  ...[["check", "\0"], ["check", "\udc00"], ["check", 1], "check"].map((args) => [args, {}, "arguments must be"]),
  [["check", "a".repeat(100_000)], {}, "arguments are longer"],
  ...outside.map((path) => [["check", path], { "a/b": 0 }, `"${path}" is outside`]),
  ...outside.map((path) => [["extractreu", "image", path], { "a/b": 0, image: image }, `"${path}" is outside`]),
  [["check", "data", "ids", "ids", "world"], included, '"generated/../../w" is outside'],
];

/** Scripts that stand before the worker's, and what the error says. */
const faults = [
  ['throw new Error("no script")', "[sS]cript"],
  ['WebAssembly.instantiate = () => Promise.reject(new RangeError("no memory"))', "no memory"],
];

// These functions run in the page.

/** What a run gives, or its error. The files are given by their contents or sizes. */
function runInPage(args, given) {
  const entries = Object.entries(given).map(([name, bytes]) => [name, bytes >= 0 ? new Uint8Array(bytes) : bytes]);
  return globalThis.stashkeep(args, Object.fromEntries(entries)).catch((error) => ({ error: String(error) }));
}

function runAtOnce(givenFiles) {
  const results = givenFiles.map((files) => globalThis.stashkeep(["check", "data", "flags", "ids", "world"], files));
  for (const { data } of givenFiles) data.fill(0); // too late: each run has a copy
  return Promise.all(results);
}

/** The error of a run whose worker begins with a fault, and the exit status of the next run. */
async function runWithFault(fault) {
  const run = () => globalThis.stashkeep(["check", "a"], { a: new Uint8Array() });
  const worker = document.getElementById("worker");
  const script = worker.textContent;
  await globalThis.stashkeep(["check", "/"]).catch(() => {}); // a failure ends the present worker
  worker.textContent = `${fault};\n${script}`;
  const message = await run().then(() => "no error", String);
  worker.textContent = script;
  return [message, (await run()).exitStatus];
}

/** Implants into an image of zeros and extracts again: the size of the image, and a byte of the savegame. */
async function roundTrips(size, count) {
  const given = { image: new Uint8Array(size), data: new Uint8Array(1024).fill(7) };
  let results;
  for (let i = 0; i < count; i++) {
    const { files: after } = await globalThis.stashkeep(["implantreu", "data", "image"], given);
    const { files } = await globalThis.stashkeep(["extractreu", "image", "data"], { image: after.image });
    results = [files.image.length, files.data[0]];
  }
  return results;
}

// These do not.

/** What a run left, to be compared. */
function summaryOf({ exitStatus, output, files, error }) {
  if (error) return { error };
  const hash = (bytes) => `${bytes.length} bytes, SHA-256 ${createHash("sha256").update(bytes).digest("hex")}`;
  const kept = Object.entries(files).map(([name, bytes]) => [name, hash(bytes)]);
  return { exitStatus, output: toLatin1(output).split("\n"), files: kept.sort() };
}

async function comparePrograms(browser, [args, files]) {
  const actual = await browser.evaluate(runInPage, args, files);
  assert.deepEqual({ args, ...summaryOf(actual) }, { args, ...summaryOf(await runNatively(args, files)) });
}

for (const browserName of browserNames) {
  test(browserName, async (t) => {
    const browser = await open(browserName, page);
    t.after(browser.close);
    for (const [what, group] of Object.entries(runs)) {
      await t.test(`both programs do the same: ${what}`, async () => {
        const isTaken = (_, i) => browserName === "chromium" || i % 3 === 0; // the others are slower
        for (const run of group.filter(isTaken)) await comparePrograms(browser, run);
      });
    }

    await t.test("what cannot be passed to the program is refused", async () => {
      for (const [args, given, expected] of impossibleCalls) {
        const { error = "no error" } = await browser.evaluate(runInPage, args, given);
        assert.ok(error.includes(expected), `${JSON.stringify(args).slice(0, 100)}: ${error}\ninstead of: ${expected}`);
      }
    });

    await t.test("runs share neither files nor tables, and leave alone what they are given", async () => {
      const world = toBytes("#AsmSectionBegin include w");
      const common = { data: new Uint8Array(1024).fill(255), ids: toBytes(""), world };
      const results = await browser.evaluate(runAtOnce, [
        { ...common, flags: toBytes(".flag A"), "generated/w": toBytes("WORLDFLAG_A = 1") },
        { ...common, flags: toBytes(".flag B"), "generated/w": toBytes("WORLDFLAG_B = 1") },
        { ...common, flags: toBytes("") },
      ]);
      const flags = results.map(({ output }) => [...new Set(toLatin1(output).match(/\w+ = 1/g))]);
      assert.deepEqual(flags, [["A = 1", "WORLDFLAG_A = 1"], ["B = 1", "WORLDFLAG_B = 1"], []]);
      assert.deepEqual(results.map(({ missing }) => missing), [[], [], ["generated/w"]]); // prettier-ignore
    });

    for (const [script, expected] of faults) {
      await t.test(`a run fails, and the next one works: ${script}`, async () => {
        await browser.go(page);
        const [message, status] = await browser.evaluate(runWithFault, script);
        assert.match(message, new RegExp(`^Error: stashkeep stopped: .*${expected}`));
        assert.equal(status, 0);
      });
    }

    await t.test("an image of 256 MiB", async () => {
      assert.deepEqual(await browser.evaluate(roundTrips, 256 * MiB, 1), [256 * MiB, 7]);
    });
  });
}

test("a hundred runs with 16 MiB take no more memory than a few", async (t) => {
  const browser = await open("chromium", page);
  t.after(browser.close);
  const protocol = await browser.page.browser().target().createCDPSession();
  async function usedMemory() {
    const { processInfo } = await protocol.send("SystemInfo.getProcessInfo");
    const statuses = processInfo.map(({ id }) => readFileSync(`/proc/${id}/status`, "latin1"));
    return statuses.reduce((sum, status) => sum + Number(/VmRSS:\s*(\d+)/.exec(status)[1]) * 1024, 0);
  }
  await browser.evaluate(roundTrips, 16 * MiB, 10);
  const before = await usedMemory();
  await browser.evaluate(roundTrips, 16 * MiB, 50);
  const growth = (await usedMemory()) - before;
  assert.ok(growth < 400 * MiB, `${growth / MiB} MiB more than before, which was ${before / MiB} MiB`);
});

test("without WebAssembly, the page says what it needs", async (t) => {
  const browser = await open("chromium", page, ["--js-flags=--jitless"]);
  t.after(browser.close);
  const [type, text] = await browser.evaluate(() => [typeof WebAssembly, document.body.innerText]);
  assert.equal(type, "undefined");
  assert.match(text, /This page needs JavaScript and WebAssembly: please open it in a browser/);
  assert.deepEqual(browser.complaints, []);
});
