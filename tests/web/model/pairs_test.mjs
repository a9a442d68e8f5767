import assert from "node:assert/strict";
import test from "node:test";
import { added, discChosen, discsExchanged, file, pairsOf, stateAfter } from "./states.mjs";

const shortPairsOf = (state) => pairsOf(state).join(", ").replaceAll(".d64", "");

test("a pair is guessed where names have one answer, or where there are only two images", () => {
  const cases = [
    { added: "disc3, disc2", pairs: "disc2 + disc3", grounds: "names" },
    { added: "a/disc2, b/disc2, b/disc3, a/disc3", pairs: "a/disc2 + a/disc3, b/disc2 + b/disc3", grounds: "names" },
    { added: "disc2 | a/x | disc3", pairs: "disc2 + disc3", grounds: "names" },
    { added: "disc2, disc3 | disc2, disc3", pairs: "disc2 + disc3, disc2 (2) + disc3 (2)", grounds: "names" },
    { added: "disc2, disc2, disc3", pairs: "" },
    { added: "a/disc2, b/disc3", pairs: "" },
    { added: "y, x", pairs: "x + y", grounds: "order" },
    { added: "disc3, x", pairs: "x + disc3", grounds: "order" },
    { added: "x, disc2", pairs: "disc2 + x", grounds: "order" },
    { added: "a/x, b/y", pairs: "" },
    { added: "x, y, z", pairs: "" },
    { added: "disc2, disc3 | x | y", pairs: "disc2 + disc3, x + y", grounds: "names" },
    { added: "disk 1, disk 2", pairs: "disk 2 + disk 1", grounds: "order" }, // both hold a savegame
  ];
  for (const { added: given, pairs, grounds } of cases) {
    const batches = given.split(" | ").map((batch) => batch.split(", ").map((name) => `${name}.d64`));
    const state = stateAfter(...batches.map((batch) => added(...batch)));
    assert.deepEqual([shortPairsOf(state), state.pairs[0]?.[2].grounds], [pairs, grounds], given);
  }
  const withFirst = stateAfter(added(file("disk 1.d64", { holds: "none" }), "disk 2.d64", "disk 3.d64"));
  assert.equal(shortPairsOf(withFirst), "disk 2 + disk 3");
});

test("a disc that is chosen changes places only with the other one of its pair", () => {
  const before = stateAfter(added("a/disc2.d64", "a/disc3.d64", "b/disc2.d64", "b/disc3.d64", "x.d64"));
  const cases = [
    { step: discChosen("a/disc3.d64", 2, "a/disc2.d64"), pairs: "a/disc3 + a/disc2, b/disc2 + b/disc3" },
    { step: discChosen("b/disc3.d64", 3, "a/disc2.d64"), pairs: "a/disc2 + b/disc3, b/disc2 + –" },
    { step: discChosen("x.d64", 3, "a/disc2.d64"), pairs: "a/disc2 + x, b/disc2 + b/disc3" },
    { step: discChosen("x.d64", 3), pairs: "a/disc2 + a/disc3, b/disc2 + b/disc3, – + x" },
    { step: discChosen("a/disc2.d64", 2), pairs: "– + a/disc3, b/disc2 + b/disc3, a/disc2 + –" },
    { step: discsExchanged("b/disc2.d64"), pairs: "a/disc2 + a/disc3, b/disc3 + b/disc2" },
  ];
  for (const { step, pairs } of cases) assert.equal(shortPairsOf(stateAfter(before, step)), pairs);
});
