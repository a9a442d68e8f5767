// The page runs the same program: what its function `stashkeep` gives is compared with what the native program does.
import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { cpSync, mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import test from "node:test";
import { fileURLToPath } from "node:url";
import { names as browserNames, open } from "./browsers.mjs";

const project = fileURLToPath(new URL("../../../", import.meta.url));
const page = join(project, "out/packages/stashkeep.html");
const pageUrl = `file://${page}`;
const seed = Number(process.env.SEED ?? 1); // others generate other cases
const MiB = 1024 * 1024;
const scratch = mkdtempSync(join(tmpdir(), "stashkeep-native-"));
process.on("exit", () => rmSync(scratch, { recursive: true }));

const toLatin1 = (bytes) => Buffer.from(bytes).toString("latin1");
const toBytes = (latin1) => new Uint8Array(Buffer.from(latin1, "latin1"));

function filesIn(folder) {
  const names = readdirSync(folder, { recursive: true }).filter((name) => statSync(join(folder, name)).isFile());
  return Object.fromEntries(names.map((name) => [name, new Uint8Array(readFileSync(join(folder, name)))]));
}

function runNatively(args, files) {
  rmSync(scratch, { recursive: true });
  mkdirSync(scratch);
  for (const [name, bytes] of Object.entries(files)) {
    mkdirSync(dirname(join(scratch, name)), { recursive: true });
    writeFileSync(join(scratch, name), bytes);
  }
  const options = { cwd: scratch, stdio: ["ignore", "pipe", "inherit"] };
  const { status, stdout } = spawnSync(join(project, "out/release/stashkeep"), args, options);
  return { exitStatus: status, output: stdout, files: filesIn(scratch) };
}

/** What is compared, in this order. */
function partsOf({ exitStatus, output, files }) {
  const names = Object.keys(files).sort();
  const parts = Object.entries({ "exit status": `${exitStatus}`, output, "file names": `${names}` });
  return parts.concat(names.map((name) => [name, files[name]])).map(([what, bytes]) => [what, Buffer.from(bytes)]);
}

function firstDifference(actual, expected) {
  const actualParts = partsOf(actual);
  for (const [i, [what, bytes]] of partsOf(expected).entries()) {
    const actualBytes = actualParts[i][1];
    if (bytes.equals(actualBytes)) continue;
    let offset = 0;
    while (bytes[offset] === actualBytes[offset]) offset++;
    const excerpt = (from) => JSON.stringify(from.toString("latin1", offset, offset + 40));
    return `${what} at byte ${offset}: ${excerpt(actualBytes)} instead of ${excerpt(bytes)}`;
  }
  return undefined;
}

async function comparePrograms(browser, cases) {
  for (const { args, files } of cases) {
    const compare = (result) => firstDifference(result, runNatively(args, files));
    const run = browser.evaluate((...call) => globalThis.stashkeep(...call), args, files);
    const difference = await run.then(compare, String);
    if (difference) assert.fail(`${browser.name}: stashkeep ${args.join(" ").slice(0, 200)}: ${difference}`);
  }
}

cpSync(join(project, "examples"), scratch, { recursive: true });
execFileSync("sh", ["make_media.sh"], { cwd: scratch });
const examples = filesIn(scratch);
const savegame = examples["savegame.dat"];
const sources = ["flags", "collectableids", "globaldefines"].map((name) => `scripts/common/global/scr_${name}.asm`);

/** A run on those of the examples that it names, and those in generated/. */
function onExamples(args) {
  const isUsed = ([name]) => args.includes(name) || name.startsWith("generated/");
  return { args, files: Object.fromEntries(Object.entries(examples).filter(isUsed)) };
}

const commands = [
  ["check", "savegame.dat"],
  ["check", "savegame.dat", ...sources],
  ["extractd64", "disc2.d64", "disc3.d64", "new.dat"],
  ["implantd64", "savegame.dat", "disc2.d64", "disc3.d64"],
  ...["reu", "georam", "NEORAM", "Ybn", "fbn"].flatMap((kind) => [
    [`extract${kind}`, "game.reu", "new.dat"],
    [`implant${kind}`, "savegame.dat", "game.reu"],
  ]),
];
const refusedCommands = [
  ...commands.map((args) => args.slice(0, -1)),
  ...commands.map((args) => args.map((name) => name.replace(/disc2|game\.reu|savegame/, "missing"))),
];
const unusual = [
  [],
  ["%s%n", "%d"],
  ...["", "€".repeat(30_000), "/dev/stdin", "/dev/null", "generated"].map((name) => ["check", name]),
  ...["game.reu", "generated", "generated/new.dat", "missing/new.dat"].map((name) => ["extractreu", "game.reu", name]),
  ["implantreu", "game.reu", "game.reu"],
  ["check", "savegame.dat", sources[2], sources[1], sources[0]],
];
const oddNames = [
  ...["__proto__", "constructor", "a/b/c", "a\\b", " ", "two words", "line\nbreak", "%41", "%s", "-", "*", "'\"", "~"],
  ...["ü.d64", "u\u0308.d64", "😀", "\u202e", "\x7f"],
];
const [disc2, disc3] = [examples["disc2.d64"], examples["disc3.d64"]];
const namedOddly = (name) => [
  { args: ["check", name], files: { [name]: savegame } },
  { args: ["implantd64", "one", name, "two"], files: { one: savegame, [name]: disc2, two: disc3 } },
  { args: ["extractd64", "one", "two", name], files: { one: disc2, two: disc3 } },
];
const writtenCases = [...commands, ...refusedCommands, ...unusual].map(onExamples).concat(oddNames.flatMap(namedOddly));

// The fuzz seeds for `check`: these files, one after the other.
const seedNames = ["generated/i", "generated/include", "world", "flags", "ids", "data"];
const seedTexts = Object.values(filesIn(join(project, "tests/fuzz/seeds/check"))).map((text) =>
  toLatin1(text).split("\x01"),
);
for (const texts of seedTexts) {
  const files = Object.fromEntries(seedNames.map((name, i) => [name, toBytes(texts[i] ?? "")]));
  writtenCases.push({ args: ["check", "data", "flags", "ids", "world"], files });
}
const seedLines = seedNames.map((name, i) => [name, seedTexts.flatMap((texts) => texts[i]?.split("\n") ?? [])]);

/** Cases by pseudo-random numbers: `count` of each operation. */
function generateCases(count) {
  let state = seed;
  function below(limit) {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor((state / 2 ** 32) * limit);
  }
  const pick = (choices) => choices[below(choices.length)];

  /** Each page of 256 bytes is filled with its own number. */
  function pages(size) {
    const bytes = new Uint8Array(size);
    for (let offset = 0; offset < size; offset += 256) bytes.fill(offset >> 8, offset, offset + 256);
    return bytes;
  }
  function memoryImage() {
    const image = pages(pick([0, 0x110b, 0x110c, 0x4000, 0x10000, MiB, 16 * MiB]));
    const last = Math.max(image.length - 256, 0);
    let pointer = 0x1000;
    for (const place of [0x900, 0x908, 0x1100, 0x1108].filter((each) => each + 4 <= image.length)) {
      const inside = [below(last), pointer, pointer + 128, last, 0x8f0, 0x1004];
      const outside = [last + 1, image.length, 2 ** 31, 2 ** 32 - 1];
      pointer = pick(below(12) === 0 ? outside : inside);
      new DataView(image.buffer).setUint32(place, pointer, true);
    }
    return image;
  }
  function dataFile() {
    const bytes = new Uint8Array(pick([1024, 1024, 1024, 0, 1, 300, 1023, 2000]));
    bytes.set(savegame.subarray(0, bytes.length));
    for (let i = 0; i < bytes.length; i += 2) bytes[below(bytes.length)] = below(256);
    return bytes;
  }
  const discImage = () => pages(pick([...Array(8).fill(196608), 0, 174848, 175531, 196607, 196609, 197376]));
  const source = (lines) => toBytes(Array.from({ length: below(12) }, () => pick(lines)).join("\n"));
  return Array.from({ length: count }, () => {
    const [data, image, one, two] = [dataFile(), memoryImage(), discImage(), discImage()];
    const texts = Object.fromEntries(seedLines.map(([name, lines]) => [name, source(lines)]));
    return [
      { args: ["extractreu", "image", "new"], files: { image } },
      { args: ["implantreu", "data", "image"], files: { data, image } },
      { args: ["extractd64", "one", "two", "new"], files: { one, two } },
      { args: ["implantd64", "data", "one", "two"], files: { data, one, two } },
      { args: ["check", "data"], files: { data } },
      { args: ["check", "data", "flags", "ids", "world"], files: { ...texts, data } },
    ];
  }).flat();
}
const generatedCases = generateCases(40);

const impossibleNames = ["", ".", "..", "../x", "/x", "a//b", "a/", "a/../b", "\0", "\ud800"];
/** Arguments, the sizes of the files (or what is given instead of bytes), and what the error says. */
const impossibleCalls = [
  ...impossibleNames.map((name) => [["check"], { [name]: 0 }, `"${name}" cannot be the name of a file`]),
  [["check"], { a: 0, "a/b": 0 }, '"a/b" cannot be the name of a file beside the others'],
  [["check"], { a: "text" }, 'contents of "a" must be a Uint8Array'],
  [["check"], { a: 256 * MiB + 1 }, '"a" has 268435457 bytes; at most 268435456 are possible'],
  ...[["check", "\0"], ["check", "\udc00"], ["check", 1], "check"].map((args) => [args, {}, "arguments must be"]),
  [["check", "a".repeat(100_000)], {}, "arguments are longer"],
];

/** Scripts that stand before the worker's, and what the error says. */
const faults = [
  ['throw new Error("no script")', "[sS]cript"],
  ['WebAssembly.instantiate = () => Promise.reject(new RangeError("no memory"))', "no memory"],
];

// These functions run in the page.

/** The error of a call with files of these sizes. */
function messageOf(args, sizes) {
  const files = sizes.map(([name, size]) => [name, typeof size === "number" ? new Uint8Array(size) : size]);
  return globalThis.stashkeep(args, Object.fromEntries(files)).then(() => "accepted", String);
}

function runAtOnce(filesOfRuns) {
  const runs = filesOfRuns.map((files) => globalThis.stashkeep(["check", "data", "flags", "ids", "world"], files));
  for (const { data } of filesOfRuns) data.fill(0); // too late: each run has a copy
  return Promise.all(runs);
}

/** The error of a run whose worker begins with a fault, and the exit status of the next run. */
async function runWithFault(fault) {
  const run = () => globalThis.stashkeep(["check", "a"], { a: new Uint8Array() });
  const worker = document.getElementById("worker");
  const script = worker.textContent;
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
    const { image } = (await globalThis.stashkeep(["implantreu", "data", "image"], given)).files;
    const { data } = (await globalThis.stashkeep(["extractreu", "image", "data"], { image })).files;
    results = [image.length, data[0]];
  }
  return results;
}

for (const browserName of browserNames) {
  const isSample = browserName !== "chromium";
  test(browserName, async (t) => {
    const browser = await open(browserName, pageUrl);
    t.after(browser.close);
    const written = writtenCases.filter((_, i) => !isSample || i % 3 === 0);
    await t.test(`${written.length} written cases`, () => comparePrograms(browser, written));
    const generated = generatedCases.slice(0, isSample ? 48 : undefined);
    await t.test(`${generated.length} generated cases with SEED=${seed}`, () => comparePrograms(browser, generated));

    await t.test("what cannot be passed to the program is refused", async () => {
      for (const [args, sizes, expected] of impossibleCalls) {
        const message = await browser.evaluate(messageOf, args, Object.entries(sizes));
        assert.ok(message.includes(expected), `${JSON.stringify([args, sizes]).slice(0, 100)}: ${message}`);
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
        await browser.go(pageUrl);
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
  const browser = await open("chromium", pageUrl);
  t.after(browser.close);
  const session = await browser.page.browser().target().createCDPSession();
  async function usedMemory() {
    const { processInfo } = await session.send("SystemInfo.getProcessInfo");
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
  const browser = await open("chromium", pageUrl, ["--js-flags=--jitless"]);
  t.after(browser.close);
  const [type, text] = await browser.evaluate(() => [typeof WebAssembly, document.body.innerText]);
  assert.equal(type, "undefined");
  assert.match(text, /This page needs JavaScript and WebAssembly: please open it in a browser/);
  assert.deepEqual(browser.complaints, []);
});
