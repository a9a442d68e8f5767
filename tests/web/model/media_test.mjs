import assert from "node:assert/strict";
import test from "node:test";
import { findFromOptions, findIntoOptions } from "../../../web/model/media.js";
import { added, file, fromChosen, nameOf, stateAfter } from "./states.mjs";

const inWords = (options) => options.map((option) => `${nameOf(option)}: ${option.refusal ?? "possible"}`);
const pair = ["disc2.d64", "disc3.d64"];
const samePair = [file("disc2.d64", { content: "same" }), file("disc3.d64", { content: "same" })];

test("what a savegame can be taken from, and why not", () => {
  const cases = [
    { files: [...pair, "my.dat"], options: ["disc2.d64 + disc3.d64: possible", "my.dat: possible"] },
    { files: ["my.dat", "new.reu"], options: ["my.dat: possible", "new.reu: noSavegame"] },
    { files: [file("half.reu", { holds: "none damaged", canTake: false })], options: ["half.reu: possible"] },
    { files: ["new.reu", "disc2.d64"], options: ["new.reu: noSavegameAnywhere"] },
    { files: samePair, options: ["disc2.d64 + disc3.d64: same"] },
  ];
  for (const { files, options } of cases) {
    assert.deepEqual(inWords(findFromOptions(stateAfter(added(...files)))), options);
  }
});

test("what a savegame can be put into, and why not", () => {
  const cases = [
    { files: ["my.dat", "new.reu"], options: ["new.reu: possible"] },
    { files: ["my.dat", file("odd.reu", { holds: "good", canTake: false })], options: ["odd.reu: noPlace"] },
    {
      files: ["my.dat", ...samePair, file("old.reu", { holds: "good" }), "new.reu"],
      options: ["new.reu: possible", "old.reu: possible", "disc2.d64 + disc3.d64: same"],
    },
  ];
  for (const { files, options } of cases) {
    assert.deepEqual(inWords(findIntoOptions(stateAfter(added(...files), fromChosen("my.dat")))), options);
  }
  assert.deepEqual(inWords(findIntoOptions(stateAfter(added(...pair)))), []); // it is the source
});
