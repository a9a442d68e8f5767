import assert from "node:assert/strict";
import test from "node:test";
import { findConcerns } from "../../../web/model/concerns.js";
import { emptyState, update } from "../../../web/model/update.js";
import * as steps from "./states.mjs";
import { added, addedAnew, chosen, file, fromChosen, intoChosen, pairsOf, removed, stateAfter } from "./states.mjs";

const titlesOf = (state) => state.files.map(({ title }) => title);
const noticesOf = (state) => state.notices.map(({ kind }) => kind);
const jobsOf = (state) => state.jobs.map(({ kind }) => kind);
const mediaOfJobs = (state) => state.jobs.map(({ medium }) => steps.nameOf(medium));
const concernsOf = (state) => findConcerns(state).map(({ kind }) => kind);
const twoPairs = stateAfter(added("a/disc2.d64", "a/disc3.d64"), added("b/disc2.d64", "b/disc3.d64"));
const pairAndImage = stateAfter(added("disc2.d64", "disc3.d64", "game.reu"));
const damagedAndImage = stateAfter(added(file("old.dat", { holds: "damaged" }), "game.reu"), steps.agreed);

// Pairs

test("a removed disc leaves its place empty, and what was chosen with it is chosen no longer", () => {
  const before = stateAfter(twoPairs, fromChosen("a/disc2.d64 + a/disc3.d64"));
  const after = stateAfter(before, removed("a/disc3.d64"));
  assert.deepEqual(pairsOf(after), ["a/disc2.d64 + –", "b/disc2.d64 + b/disc3.d64"]);
  assert.equal(after.gone.from, "a/disc2.d64 and a/disc3.d64");
  const again = stateAfter(after, added("a/disc3.d64"));
  assert.deepEqual(pairsOf(again), pairsOf(after));
  assert.equal(chosen(again, "from"), undefined);
});

test("discs of one name that are added singly become a wrong pair only with a question, or none", () => {
  const disc = { A2: "disc2.d64", A3: "disc3.d64", B2: "disc2.d64", B3: "disc3.d64" };
  const cases = [
    { order: ["A2", "B2", "B3", "A3"], pairs: [], concerns: [] },
    { order: ["A2", "B2", "A3", "B3"], pairs: [], concerns: [] },
    { order: ["A2", "B3", "B2", "A3"], pairs: ["disc2.d64 + disc3.d64"], concerns: ["twins"] },
    { order: ["A2", "A3", "B3", "B2"], pairs: ["disc2.d64 + disc3.d64"], concerns: ["twins"] },
    { order: ["A2", "A3"], pairs: ["disc2.d64 + disc3.d64"], concerns: [] },
  ];
  for (const { order, pairs, concerns } of cases) {
    const state = stateAfter(steps.addedSingly(...order.map((name) => disc[name])), intoChosen("data"));
    assert.deepEqual([pairsOf(state), concernsOf(state)], [pairs, concerns], order.join());
  }
});

test("the grounds for a place are what the person did with it, and no more", () => {
  const before = stateAfter(added("disc2.d64", "disc3.d64"), added("other.d64"));
  const twice = stateAfter(before, steps.discsExchanged("disc2.d64"), steps.discsExchanged("disc2.d64"));
  const groundsAfter = (...parts) => [2, 3].map((disc) => stateAfter(...parts).pairs[0][disc]?.grounds);
  assert.deepEqual(groundsAfter(before), ["names", "names"]);
  assert.deepEqual(groundsAfter(before, steps.discChosen("other.d64", 3, "disc2.d64")), ["names", "chosen"]);
  assert.deepEqual(groundsAfter(twice), ["swapped", "swapped"]);
  assert.deepEqual(groundsAfter(twice, addedAnew("disc3.d64")), ["swapped", "anew"]);
  assert.deepEqual(groundsAfter(twice, removed("disc3.d64"), added("disc3.d64")), ["swapped", undefined]);
});

// Files

test("a file that has changed is replaced only if no other can be meant", () => {
  const before = stateAfter(added(file("my.dat", { modified: 5 })));
  const newer = () => file("my.dat", { modified: 9 });
  const after = (...parts) => stateAfter(before, ...parts);
  assert.deepEqual(titlesOf(after(addedAnew("my.dat", newer()))), ["my.dat"]);
  assert.deepEqual(noticesOf(after(addedAnew("my.dat", newer()))), ["replaced"]);
  assert.deepEqual(titlesOf(after(added(newer()))), ["my.dat", "my.dat (2)"]); // the first one has not changed
  assert.deepEqual(titlesOf(after(addedAnew("my.dat", file("my.dat", { modified: 4 })))), ["my.dat", "my.dat (2)"]);
  const both = after(steps.given(newer(), newer()), steps.examined("my.dat"));
  assert.deepEqual(titlesOf(both), ["my.dat", "my.dat (2)", "my.dat (3)"]);
});

test("a disc that is added anew keeps its place, and what was chosen with it has to be chosen anew", () => {
  const before = stateAfter(pairAndImage, steps.discsExchanged("disc2.d64"), fromChosen("disc3.d64 + disc2.d64"));
  const after = stateAfter(before, addedAnew("disc2.d64"));
  assert.deepEqual(pairsOf(after), ["disc3.d64 + disc2.d64"]);
  assert.equal(chosen(after, "from"), undefined);
  assert.equal(after.gone.from, "disc3.d64 and disc2.d64");
});

test("a file that was refused is replaced by adding it again, and what is there already is not added twice", () => {
  const same = file("game.reu", { content: "same" });
  const refused = stateAfter(added(file("game.reu", { refused: "failed", content: "same" })), added(same));
  assert.deepEqual([titlesOf(refused), noticesOf(refused)], [["game.reu"], ["replaced"]]);
  const twice = stateAfter(added(same), added({ ...same, id: "again" }));
  assert.deepEqual(titlesOf(twice), ["game.reu"]);
  assert.deepEqual(titlesOf(stateAfter(twice, steps.doublesAdded)), ["game.reu", "game.reu (2)"]);
});

test("what is not in the list is said", () => {
  const leftOut = update(emptyState, { type: "filesGiven", given: [file("my.dat")], leftOut: 1 });
  assert.deepEqual([noticesOf(leftOut), noticesOf(stateAfter(steps.given()))], [["leftOut"], ["nothingGiven"]]);
  const picture = stateAfter(added("my.dat", file("cover.jpg", { refused: "ignored" })));
  assert.deepEqual([titlesOf(picture), noticesOf(picture)], [["my.dat"], ["ignored"]]);
});

// Choices

test("what is the only possibility is chosen, and nothing else is", () => {
  const cases = [
    { files: ["my.dat", "game.reu"], from: "my.dat", into: "game.reu" },
    { files: ["my.dat", "your.dat", "game.reu"], from: undefined, into: undefined },
    { files: ["my.dat", "one.reu", "two.reu"], from: "my.dat", into: undefined },
    { files: ["one.reu", "two.reu"], from: undefined, into: undefined },
  ];
  for (const { files, from, into } of cases) {
    const state = stateAfter(added(...files));
    assert.deepEqual([chosen(state, "from"), chosen(state, "into")], [from, into], files.join());
  }
});

test("more floppy images leave from and into alone", () => {
  const after = stateAfter(pairAndImage, added("b/disc2.d64", "b/disc3.d64"));
  assert.deepEqual([chosen(after, "from"), chosen(after, "into")], ["disc2.d64 + disc3.d64", "game.reu"]);
});

test("what was chosen to be replaced does not become the source when nothing else is left", () => {
  const after = stateAfter(twoPairs, intoChosen("b/disc2.d64 + b/disc3.d64"), removed("a/disc2.d64"));
  assert.deepEqual([chosen(after, "from"), chosen(after, "into")], [undefined, "b/disc2.d64 + b/disc3.d64"]);
});

test("another source leaves open what it should go into", () => {
  const both = stateAfter(added("my.dat", "your.dat", "one.reu", "two.reu"), fromChosen("my.dat"));
  const state = stateAfter(both, intoChosen("one.reu"));
  assert.equal(chosen(stateAfter(state, fromChosen("your.dat")), "into"), undefined);
  assert.equal(chosen(stateAfter(state, fromChosen("my.dat")), "into"), "one.reu");
  assert.equal(chosen(stateAfter(state, intoChosen("data")), "into"), undefined); // it is one already
});

test("an agreement is about these files and no others", () => {
  assert.notEqual(damagedAndImage.choices.agreed, undefined);
  const other = stateAfter(damagedAndImage, removed("old.dat"), added(file("old.dat", { holds: "damaged" })));
  const after = stateAfter(other, fromChosen("old.dat"), intoChosen("game.reu"));
  assert.deepEqual([concernsOf(after), after.choices.agreed], [["damaged", "damaged"], undefined]);
});

// Making

test("nothing is made before the person has agreed, and one click or two make it once", () => {
  const open = stateAfter(added(file("old.dat", { holds: "damaged" }), "game.reu"), steps.makeAsked);
  assert.deepEqual(jobsOf(open), []);
  const asked = stateAfter(open, steps.agreed, steps.makeAsked, steps.makeAsked);
  assert.deepEqual(jobsOf(asked), ["make"]);
  const made = stateAfter(asked, steps.filesMade(), steps.makeAsked);
  assert.deepEqual([made.result.files.length, jobsOf(made), noticesOf(made)], [1, [], []]);
  const [isSaved, isSavedNow] = [made, stateAfter(made, steps.fileSaved)].map(({ result }) => result.files[0].isSaved);
  assert.deepEqual([isSaved, isSavedNow], [false, true]);
});

test("a result is of the files for which it was asked, whatever is added meanwhile", () => {
  const asked = stateAfter(pairAndImage, steps.given("c/disc2.d64", "c/disc3.d64"), steps.makeAsked);
  assert.deepEqual(jobsOf(asked), ["examine", "make"]);
  const { result } = stateAfter(asked, steps.examined(), steps.filesMade());
  assert.deepEqual([result.from, result.into].map(steps.nameOf), ["disc2.d64 + disc3.d64", "game.reu"]);
});

test("a result that comes after the choice has changed is not shown, and the next one can be made", () => {
  const asked = stateAfter(pairAndImage, steps.makeAsked);
  const late = stateAfter(asked, intoChosen("data"), steps.filesMade());
  assert.deepEqual([late.result, noticesOf(late)], [undefined, ["madeInVain"]]);
  assert.deepEqual(jobsOf(stateAfter(late, steps.makeAsked)), ["make"]);
});

// Flags

test("flags are read as soon as all sources are there, and again for what else is shown", () => {
  const state = stateAfter(added("my.dat", "your.dat", "old.dat", "scr_flags.asm", "scr_globaldefines.asm"));
  assert.deepEqual(jobsOf(state), []);
  const complete = stateAfter(state, added("scr_collectableids.asm"));
  assert.deepEqual(mediaOfJobs(complete), ["my.dat"]);
  const other = stateAfter(complete, steps.shownChosen("your.dat"));
  assert.deepEqual(mediaOfJobs(other), ["my.dat", "your.dat"]); // the first one has begun
  assert.deepEqual(mediaOfJobs(stateAfter(other, steps.shownChosen("old.dat"))), ["my.dat", "old.dat"]);
  const [old, wanted] = other.jobs;
  const { flagReports } = stateAfter(other, steps.flagsRead(old, ["OLD"]), steps.flagsRead(wanted, ["NEW"]));
  assert.deepEqual([flagReports.length, flagReports[0].isReading, flagReports[0].flags], [1, false, ["NEW"]]);
});
