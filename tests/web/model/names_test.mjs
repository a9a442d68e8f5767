import assert from "node:assert/strict";
import test from "node:test";
import { insertBeforeExtension, readDiscName, uniqueText } from "../../../web/model/names.js";

test("the number of a disc, and the series to which it belongs, are read from its name", () => {
  const cases = [
    { path: "disc2.d64", number: 2, series: "disc#" },
    { path: "a/DISC 3.D64", number: 3, series: "a/disc #" },
    { path: "Zarnis (Disk 3 of 3).d64", number: 3, series: "zarnis (disk # of 3)" },
    { path: "game 1 side-2.d64", number: 2, series: "game 1 side-#" },
    { path: "side 1 disk 2.d64", number: 2, series: "side 1 disk #" },
    { path: "zarnis2.d64", number: 2, series: "zarnis#" },
    { path: "2.d64", number: 2, series: "#" },
    { path: "v1.2/zarnis_3", number: 3, series: "v1.2/zarnis_#" },
    { path: "disc12.d64", series: "disc12.d64" },
    { path: "zarnis 2019.d64", series: "zarnis 2019.d64" },
    { path: "disc0.d64", series: "disc0.d64" },
    { path: "Blank.d64", series: "blank.d64" },
  ];
  for (const { path, ...expected } of cases) assert.deepEqual(readDiscName(path), expected, path);
});

test("names that are taken get a number, before the extension", () => {
  const withNumber = (number) => insertBeforeExtension("my.old.reu", `-${number}`);
  assert.equal(uniqueText("my.old.reu", ["other.reu"], withNumber), "my.old.reu");
  assert.equal(uniqueText("my.old.reu", ["my.old.reu", "my.old-2.reu"], withNumber), "my.old-3.reu");
  assert.equal(insertBeforeExtension("disc", "-2"), "disc-2");
});
