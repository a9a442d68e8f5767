import assert from "node:assert/strict";
import test from "node:test";
import {
  compareFlags,
  compareSavegames,
  countDifferentBytes,
  findRemarks,
  findSameSavegame,
} from "../../../web/model/compare.js";
import { parseReport } from "../../../web/model/report.js";
import { changed, run, savegame } from "../program/native.mjs";

/** The savegame in which these bytes are changed. */
async function savegameWith(...changes) {
  const data = changes.reduce((bytes, [at, ...values]) => changed(bytes, at, ...values), savegame);
  const { output } = await run(["check", "data"], { data });
  return parseReport(output, data);
}

const inWords = ({ title, values }) => `${title} ${values.join(" | ")}`;
const moneyOfDisc2 = [0x158, 13, 4]; // 134 instead of 125; the checksum stays
const otherItem = [256, 1]; // in the chest; the checksum is wrong then
const noMark = [356, 0];

test("two savegames are the same only if all bytes are; else the values and items that differ are named", async () => {
  const cases = [
    { changes: [], bytes: 0, differences: [] },
    { changes: [[10, savegame[10] ^ 1]], bytes: 1, differences: ["Disc 2: Savegame undamaged | damaged"] },
    { changes: [moneyOfDisc2], bytes: 2, differences: ["Disc 2: Money 125 | 134"] },
    { changes: [noMark], bytes: 1, differences: ["Disc 2: Savegame undamaged | none"] },
    {
      changes: [otherItem],
      bytes: 1,
      differences: [
        "Disc 2: Savegame undamaged | damaged",
        "Disc 2: Chest: Fruit 15 | 5",
        "Disc 2: Chest: Potion healing 0 | 10",
      ],
    },
  ];
  const original = await savegameWith();
  for (const { changes, bytes, differences } of cases) {
    const other = await savegameWith(...changes);
    assert.equal(countDifferentBytes(original, other), bytes);
    assert.deepEqual(compareSavegames(original, other).map(inWords), differences);
    const media = [{ id: "1", savegame: original }, { id: "2", savegame: other }]; // prettier-ignore
    assert.equal(findSameSavegame(media[0], media)?.id, bytes === 0 ? "2" : undefined);
  }
});

test("what differs between the two discs of one savegame is remarked, if both have one", async () => {
  const cases = [
    { changes: [], remarks: [] },
    { changes: [moneyOfDisc2], remarks: ["money 134 | 125"] },
    { changes: [moneyOfDisc2, noMark], remarks: [] },
  ];
  for (const { changes, remarks } of cases) {
    assert.deepEqual(findRemarks(await savegameWith(...changes)).map(inWords), remarks);
  }
});

test("flags differ if they differ on either disc", () => {
  const flags = (...values) => values.map((each, i) => ({ name: `FLAG_${i}`, values: each.split(" ") }));
  const differing = compareFlags(flags("1 1", "1 1", "0 1"), flags("1 1", "0 1", "0 0"));
  assert.deepEqual(
    differing.map(({ name, values }) => `${name} ${values.join(" ")}`),
    ["FLAG_1 1 1 0 1", "FLAG_2 0 1 0 0"],
  );
});
