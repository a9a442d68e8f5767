import assert from "node:assert/strict";
import test from "node:test";
import { includedPath, readFlags } from "../../../web/program/flags.js";
import { examples, run, savegame } from "./native.mjs";

const paths = ["flags", "collectableids", "globaldefines"].map((name) => `scripts/common/global/scr_${name}.asm`);
const without = (...names) => Object.fromEntries(Object.entries(examples).filter(([path]) => !names.includes(path)));
const village = "generated/worldflags_village.inc";

test("the flags of both discs are read with the sources", async () => {
  const { flags, missing } = await readFlags(run, savegame, paths, examples);
  const valuesOf = (list, wanted) => list.find(({ name }) => name === wanted)?.values;
  assert.deepEqual(missing, []);
  assert.deepEqual(valuesOf(flags.game, "FLAG_STEPS_WALKED"), ["1200", "1734"]);
  assert.deepEqual(valuesOf(flags.world, "WORLDFLAG_FOREST_CHEST_1_TAKEN"), ["1", "0"]);
  assert.deepEqual([flags.game.length, flags.world.length], [22, 30]);
});

test("an included file is found wherever it is among the files, and named if it is not there", async () => {
  const elsewhere = { ...without(village), "other/WorldFlags_Village.INC": examples[village] };
  assert.deepEqual(await readFlags(run, savegame, paths, elsewhere), await readFlags(run, savegame, paths, examples));
  const { flags, output, missing } = await readFlags(run, savegame, paths, without(village));
  assert.deepEqual([flags, missing], [undefined, [village]]);
  assert.match(output, /problem loading flags files/);
});

test("an included file is given to the program at the path at which it looks for it", () => {
  const cases = [
    { path: "a.inc", expected: "generated/a.inc" },
    { path: "game/generated/a.inc", expected: "generated/a.inc" },
    { path: "game/generated/b/a.inc", expected: "generated/b/a.inc" },
    { path: "generated/old/generated/a.inc", expected: "generated/a.inc" },
    { path: "lib/a.inc", expected: "generated/a.inc" },
  ];
  for (const { path, expected } of cases) assert.equal(includedPath(path), expected);
});
