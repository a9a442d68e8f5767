import assert from "node:assert/strict";
import test from "node:test";
import { findConcerns } from "../../../web/model/concerns.js";
import { findMedia } from "../../../web/model/media.js";
import * as steps from "./states.mjs";
import { added, addedAnew, discChosen, discsExchanged, file, fromChosen, stateAfter } from "./states.mjs";

function concernsOf(state) {
  const inWords = ({ kind, disc, page, file: about }) =>
    [kind, disc, page, about?.title].filter((part) => part !== undefined);
  return findConcerns(state).map((concern) => inWords(concern).join(" "));
}

test("what the person has to agree to before a savegame is moved into a new data file", () => {
  const pair = added("disc2.d64", "disc3.d64");
  const twins = steps.addedSingly("disc2.d64", "disc2.d64", "disc3.d64");
  const inOrder = added("x.d64", "y.d64");
  const three = added(file("Disk 1.d64", { holds: "none" }), "Disk 2.d64", "Disk 3.d64");
  const cases = [
    { given: [pair], concerns: [] },
    { given: [added("disc2.d64", file("disc3.d64", { holds: "none" }))], concerns: ["halfEmpty 3"] },
    { given: [added(file("disc2.d64", { holds: "damaged" }), "disc3.d64")], concerns: ["damaged 2 1"] },
    { given: [added(file("old.reu", { holds: "damaged" }))], concerns: ["damaged 2 1", "damaged 3 1"] },
    { given: [inOrder], concerns: ["order"] },
    { given: [inOrder, addedAnew("x.d64"), addedAnew("y.d64")], concerns: ["order"] },
    { given: [inOrder, discsExchanged("x.d64")], concerns: [] },
    { given: [steps.addedSingly("disc2.d64", "disc3.d64", "disc3.d64")], concerns: ["twins disc3.d64"] },
    { given: [twins, discChosen("disc2.d64", 2), discChosen("disc3.d64", 3, "disc2.d64")], concerns: [] },
    {
      given: [pair, discsExchanged("disc2.d64")],
      concerns: ["contradiction 2 disc3.d64", "contradiction 3 disc2.d64"],
    },
    {
      given: [three, discChosen("Disk 1.d64", 2, "Disk 2.d64")],
      concerns: ["halfEmpty 2", "contradiction 2 Disk 1.d64"],
    },
  ];
  for (const { given, concerns } of cases) {
    const state = stateAfter(...given);
    const [first] = findMedia(state);
    const chosen = stateAfter(state, fromChosen(steps.nameOf(first)), steps.intoChosen("data"));
    assert.deepEqual(concernsOf(chosen), concerns);
  }
});

test("images that a savegame goes into have no concerns but those about their order", () => {
  const cases = [
    { files: [file("game.reu", { holds: "damaged" })], concerns: [] },
    { files: [file("disc2.d64", { holds: "damaged" }), file("disc3.d64", { holds: "none" })], concerns: [] },
    { files: ["x.d64", "y.d64"], concerns: ["order"] },
  ];
  for (const { files, concerns } of cases) {
    assert.deepEqual(concernsOf(stateAfter(added("my.dat", ...files), fromChosen("my.dat"))), concerns);
  }
});

test("discs of which nobody said that they belong together have to be agreed to", () => {
  const pair = added("disc2.d64", "disc3.d64");
  const twins = steps.addedSingly("disc2.d64", "disc3.d64", "disc3.d64");
  const cases = [
    { after: [pair, addedAnew("disc3.d64")], concerns: ["anew disc3.d64"] },
    { after: [twins, discsExchanged("disc2.d64"), discsExchanged("disc3.d64")], concerns: ["twins disc3.d64"] },
  ];
  for (const { after, concerns } of cases) {
    const state = stateAfter(...after);
    const chosen = stateAfter(state, fromChosen(steps.nameOf(findMedia(state)[0])), steps.intoChosen("data"));
    assert.deepEqual(concernsOf(chosen), concerns);
  }
});
