import assert from "node:assert/strict";
import test from "node:test";
import { countFound, groupFiles } from "../../../web/model/cards.js";
import { added, file, stateAfter } from "./states.mjs";

test("savegames come first, then places for one, free images, sources, and what cannot be used", () => {
  const cut = file("cut.d64", { refused: "oddFloppy" });
  const state = stateAfter(added(cut, "flags.asm", "new.reu", "a/disc2.d64", "a/disc3.d64", "b/disc2.d64", "my.dat"));
  const titlesOf = (files) => files.map(({ title }) => title);
  const { media, free, sources, refused } = groupFiles(state);
  assert.deepEqual(
    media.map((card) => card.file?.title ?? "pair"),
    ["pair", "my.dat", "new.reu"],
  );
  assert.deepEqual([free, sources, refused].map(titlesOf), [["b/disc2.d64"], ["flags.asm"], ["cut.d64"]]);
  assert.deepEqual(countFound(state), { savegames: 2, different: 2, places: 1, single: 1, refused: 1 });
});
