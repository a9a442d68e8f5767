import assert from "node:assert/strict";
import test from "node:test";
import { readFlags } from "../../../web/program/flags.js";
import { examples, run, savegame } from "./native.mjs";

const source = (path, bytes = examples[path]) => ({ path, bytes: Buffer.from(bytes) });
const scripts = ["flags", "collectableids", "globaldefines"].map((name) => `scripts/common/global/scr_${name}.asm`);
const main = scripts.map((path) => source(path));
const included = Object.keys(examples).filter((path) => path.startsWith("generated/"));
const [village] = included.filter((path) => path.includes("village"));
const others = included.filter((path) => path !== village).map((path) => source(path));

const namesIn = ({ flags }) => flags && [...flags.game, ...flags.world].map(({ name }) => name);

test("the flags of both discs are read with the sources", async () => {
  const { flags, missing } = await readFlags(run, savegame, main, [...others, source(village)]);
  const valuesOf = (list, wanted) => list.find(({ name }) => name === wanted)?.values;
  assert.deepEqual(missing, []);
  assert.deepEqual(valuesOf(flags.game, "FLAG_STEPS_WALKED"), ["1200", "1734"]);
  assert.deepEqual(valuesOf(flags.world, "WORLDFLAG_FOREST_CHEST_1_TAKEN"), ["1", "0"]);
  assert.deepEqual([flags.game.length, flags.world.length], [22, 30]);
});

test("an included file is found wherever it is; one that is used for another path is named, and a missing one, too", async () => {
  const cases = [
    { path: village },
    { path: `game/${village}` },
    { path: "worldflags_village.inc" },
    { path: "lib/WorldFlags_Village.INC", isStandIn: true },
    { path: "generated/old/worldflags_village.inc", isStandIn: true },
  ];
  for (const { path, isStandIn } of cases) {
    const { flags, standIns } = await readFlags(run, savegame, main, [...others, source(path, examples[village])]);
    assert.deepEqual([flags.world.length, standIns], [30, isStandIn ? [{ path: village, name: path }] : []], path);
  }
  const { flags, output, missing } = await readFlags(run, savegame, main, others);
  assert.deepEqual([flags, missing], [undefined, [village]]);
  assert.match(output, /problem loading flags files/);
});

test("no flag is shown that is a part of a name", async () => {
  const cases = [
    { text: ".flag A\n.flag B", names: ["A", "B"] },
    { text: '.flag "A = 1"', names: ["A = 1"] },
    { text: '# 5" long\n.flag A', names: ["A"] }, // the name cannot be seen, but its value changes
    { text: '.flag "A = 1\\nB"', names: undefined },
    { text: '.flag "A = 0\nB"', names: undefined },
    { text: '.flag "A\nB"', names: ["A\nB"] },
    { text: ".flags W 0 2000\n.flag A", names: ["A", "W"] }, // behind all flags, so its value does not change
  ];
  const world = source("world", "");
  for (const { text, names } of cases) {
    const reading = await readFlags(run, savegame, [source("flags", text), source("ids", ""), world], []);
    assert.deepEqual([namesIn(reading), reading.isUnclear], [names, names === undefined], text);
  }
});

test("whatever is included, the program runs at most three times", async () => {
  let runs = 0;
  const counting = (...call) => (++runs, run(...call));
  const names = Array.from({ length: 50 }, (_, i) => i);
  const cases = [
    { world: names.map((name) => `include "${name}"`), missing: [] },
    { world: names.map((name) => `include #\n"${name}"`), missing: ["generated/2"] }, // found only by running the program
  ];
  for (const { world, missing } of cases) {
    runs = 0;
    const sources = [source("f", ""), source("i", ""), source("w", `#AsmSectionBegin ${world.join("\n")}`)];
    const reading = await readFlags(counting, savegame, sources, names.map((name) => source(`lib/${name}`, ""))); // prettier-ignore
    assert.deepEqual([runs <= 3, reading.missing], [true, missing]);
  }
});
