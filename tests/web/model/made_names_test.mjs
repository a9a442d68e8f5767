import assert from "node:assert/strict";
import test from "node:test";
import { namesOfCopies } from "../../../web/model/made_names.js";
import { findMedia } from "../../../web/model/media.js";
import { added, stateAfter } from "./states.mjs";

const longName = "a".repeat(100);

test("new images have different names, which say whose savegame is in them", () => {
  const cases = [
    { into: ["game.reu"], names: ["game"] },
    { into: ["disc2.d64", "disc3.d64"], names: ["disc2", "disc3"] },
    { into: ["a/x.d64", "a/x (1).d64"], names: ["x disc 2", "x disc 3"] },
    { into: [`${longName}2.d64`, `${longName}3.d64`], names: [`${"a".repeat(80)} disc 2`, `${"a".repeat(80)} disc 3`] },
    { into: ["what:?.reu"], names: ["what__"] },
  ];
  for (const { into: paths, names } of cases) {
    const media = findMedia(stateAfter(added(...paths, "mine.dat")));
    const [from, into] = [media.at(-1), media[0]];
    const found = namesOfCopies(from, into);
    for (const name of found) assert.match(name, / \(savegame of mine, money 40, 1970-01-01 [\d-]+\)\.(reu|d64)$/);
    assert.deepEqual(
      found.map((name) => name.replace(/ \(savegame .*/, "")),
      names,
    );
  }
});
