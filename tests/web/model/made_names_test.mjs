import assert from "node:assert/strict";
import test from "node:test";
import { nameOfBackup, namesOfCopies } from "../../../web/model/made_names.js";
import { findMedia } from "../../../web/model/media.js";
import { file, stateWith } from "./states.mjs";

const at = (...date) => new Date(...date).getTime();
const written = at(2020, 0, 2, 3, 4, 5);
const when = "2020-01-02 03-04-05";
const longName = "a".repeat(100);
const half = findMedia(stateWith(file("half.dat", { modified: written, holds: "good none" })))[0];
const mediaOf = (...paths) =>
  findMedia(stateWith(...paths.map((path) => file(path, { modified: written, holds: "good" }))));

test("new images have different names, which say whose savegame is in them", () => {
  const cases = [
    { into: ["game.reu"], names: ["game.reu"] },
    { into: ["disc2.d64", "disc3.d64"], names: ["disc2.d64", "disc3.d64"] },
    { into: ["a/x.d64", "a/x (1).d64"], names: ["x disc 2.d64", "x disc 3.d64"] },
    {
      into: [`${longName}2.d64`, `${longName}3.d64`],
      names: [2, 3].map((disc) => `${"a".repeat(80)} disc ${disc}.d64`),
    },
    { into: ["what:?.reu"], names: ["what__.reu"] },
    { into: ["game (savegame of other, money 1, 2019-01-01 00-00-00).reu"], names: ["game.reu"] },
    { into: ["game (savegame of other, money 1, 2019-01-01 00-00-00) (1).reu"], names: ["game.reu"] },
    { into: ["\u202egame\n .reu"], names: ["game_.reu"] },
  ];
  for (const { into: paths, names } of cases) {
    const [into] = mediaOf(...paths);
    const expected = names.map((name) => name.replace(/(?=\.\w+$)/, ` (savegame of mine, money 40, ${when})`));
    assert.deepEqual(namesOfCopies(mediaOf("mine.dat")[0], into), expected);
  }
});

test("a backup is named after where the savegame comes from, and when that was written", () => {
  const cases = [
    { of: ["game.reu"], name: `game, money 40, ${when}` },
    { of: ["Zarnis (Disk 2 of 3).d64", "Zarnis (Disk 3 of 3).d64"], name: `Zarnis, money 40, ${when}` },
    { of: ["game (savegame of x, money 7, 2019-01-01 00-00-00).reu"], name: `game, money 40, ${when}` },
    { of: ["backup of old, money 7, 2019-01-01 00-00-00.dat"], name: "old, money 7, 2019-01-01 00-00-00" },
    { of: ["2.d64", "3.d64"], name: `discs, money 40, ${when}` },
    { of: ["from anna.zip/disc2.d64", "from anna.zip/disc3.d64"], name: `from anna, money 40, ${when}` },
  ];
  for (const { of, name } of cases) assert.equal(nameOfBackup(mediaOf(...of)[0]), `backup of ${name}.dat`);
  assert.equal(nameOfBackup(half), `backup of half, half, money 40, ${when}.dat`);
});
