import assert from "node:assert/strict";
import test from "node:test";
import { findSources } from "../../../web/model/sources.js";
import { added, addedAnew, file, removed, roleChosen, stateAfter } from "./states.mjs";

const [flags, ids, globals] = ["scr_flags.asm", "scr_collectableids.asm", "scr_globaldefines.asm"];

function sourcesAfter(...steps) {
  const { main, included } = findSources(stateAfter(...steps));
  return { main: main.map((each) => each?.title), included: included.map(({ title }) => title) };
}

test("the main sources are those with the names of the game's files, or those that the person has chosen", () => {
  const before = stateAfter(added("a.inc", globals, `lib/${ids}`, "SCR_Flags.asm"));
  const all = ["SCR_Flags.asm", `lib/${ids}`, globals];
  assert.deepEqual(sourcesAfter(before), { main: all, included: ["a.inc"] });
  const more = added(flags, file("empty.inc", { refused: "empty", size: 0 }), "game.reu");
  assert.deepEqual(sourcesAfter(before, more), { main: all, included: ["a.inc", flags, "empty.inc"] });
  const chosen = { main: ["a.inc", all[1], all[2]], included: ["SCR_Flags.asm"] };
  assert.deepEqual(sourcesAfter(before, roleChosen("a.inc", flags)), chosen);
  const exchanged = { main: [globals, all[1], "SCR_Flags.asm"], included: ["a.inc"] };
  assert.deepEqual(sourcesAfter(before, roleChosen(globals, flags)), exchanged);
  const without = { main: [all[0], all[1], undefined], included: ["a.inc", globals] };
  assert.deepEqual(sourcesAfter(before, roleChosen(globals, undefined)), without);
});

test("a source that is removed has its role no longer, and one that cannot be used replaces none", () => {
  const before = stateAfter(added(flags, ids, globals));
  assert.deepEqual(sourcesAfter(before, removed(flags)).main, [undefined, ids, globals]);
  assert.deepEqual(sourcesAfter(before, addedAnew(flags)).main, [flags, ids, globals]);
  const noText = file(flags, { refused: "unknown", modified: 2 });
  assert.deepEqual(sourcesAfter(before, addedAnew(flags, noText)).main, [flags, ids, globals]);
});
