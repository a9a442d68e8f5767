import assert from "node:assert/strict";
import test from "node:test";
import * as allNames from "../../../web/model/names.js";

const { insertBeforeExtension, readDiscName, shortenTitles, toProgramName, toTitle, uniqueText } = allNames;

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

test("what is shown of a path can be seen, and does not change the direction of the text around it", () => {
  const cases = [
    { path: "my game/disc2.d64", title: "my game/disc2.d64" },
    { path: "a\nb\t<b>'\"&.d64", title: "a␊b␉<b>'\"&.d64" },
    { path: "gnp.\u202ereu", title: "gnp.\ufffdreu" },
    { path: " a.reu ", title: "␠a.reu␠" },
    { path: "משחק.reu", title: "\u2068משחק.reu\u2069" },
  ];
  for (const { path, title } of cases) assert.equal(toTitle(path), title);
});

test("titles are shortened to what tells them apart", () => {
  const long = (end) => `${"a".repeat(50)}${"b".repeat(50)}${end}`;
  const middle = (text) => `${"a".repeat(50)}${text}${"b".repeat(50)}`;
  const cases = [
    { titles: ["zarnis/a/disc2.d64", "zarnis/b/disc2.d64"], short: ["a/disc2.d64", "b/disc2.d64"] },
    { titles: ["zarnis/disc2.d64", "disc3.d64"], short: ["zarnis/disc2.d64", "disc3.d64"] },
    { titles: [long("1"), long("2")], short: ["1", "2"].map((end) => `${"a".repeat(45)}…${"b".repeat(44)}${end}`) },
    { titles: [middle("1"), middle("2")], short: undefined }, // they would be the same
    { titles: ["\u2068a/משחק\u2069", "a/b"], short: ["\u2068משחק\u2069", "b"] },
  ];
  for (const { titles, short } of cases) assert.deepEqual([...shortenTitles(titles).values()], short ?? titles);
});

test("every name becomes one that the program can have, with room for additions", () => {
  const cases = [
    { path: "a/disc 2.d64", name: "disc 2.d64" },
    { path: "line\nbreak'\".reu ", name: "line\nbreak'\".reu " },
    { path: `${"ü".repeat(125)}.reu`, name: `${"ü".repeat(100)}.reu` },
    { path: "half \ud800 \0.reu", name: "half _ _.reu" },
    { path: "a/..", name: "file" },
  ];
  for (const { path, name } of cases) assert.equal(toProgramName(path), name);
});
