import assert from "node:assert/strict";
import test from "node:test";
import { parseReport } from "../../../web/model/report.js";
import { changed, run, savegame } from "../program/native.mjs";

async function inspect(data) {
  const { output } = await run(["check", "data"], { data });
  return parseReport(output, data);
}

const slotInWords = ({ slot, id, name, count, isUsed }) =>
  `${slot}: ${count} of ${id} ${name}${isUsed ? "" : ", unused"}`;

test("the values and items of both discs are read from what the program prints", async () => {
  const [disc2, disc3] = await inspect(savegame);
  const values = ["money", "weaponFileId", "checkSumPage1", "savegameid"].map((name) => disc2.fields.get(name));
  assert.deepEqual(values, ["125", "$21", "c1", "1234"]);
  assert.deepEqual([disc2.inventory.length, disc2.chest.length], [24, 20]);
  const cases = [
    { slot: disc2.inventory[2], inWords: "2: 30 of 23 COLLECTABLE_ARROWS" },
    { slot: disc2.inventory[8], inWords: "8: 1 of 0 COLLECTABLE_MONEY, unused" },
    { slot: disc2.chest[3], inWords: "3: 1 of 12 COLLECTABLE_FIRESPELL" },
    { slot: disc3.chest[15], inWords: "15: 1 of 44 COLLECTABLE_EXIT_ICON" },
    { slot: disc3.chest[17], inWords: "17: 256 of 255 undefined" },
  ];
  for (const { slot, inWords } of cases) assert.equal(slotInWords(slot), inWords);
  assert.deepEqual([disc2.bytes, disc3.bytes], [savegame.slice(0, 512), savegame.slice(512)]);
});

test("the state of a disc's savegame is that of its mark and of its two checksums", async () => {
  const cases = [
    { data: savegame, states: "good, good" },
    { data: new Uint8Array(1024), states: "none, none" },
    { data: changed(savegame, 0, 0), states: "damaged 0, good" },
    { data: changed(savegame, 512 + 346, 99), states: "good, damaged 1" },
    { data: changed(changed(savegame, 512, 99), 512 + 256, 99), states: "good, damaged 1 0" },
    { data: changed(savegame, 356, 0x54), states: "none, good" },
  ];
  const inWords = ({ state, damagedPages }) => [state, ...damagedPages].join(" ");
  for (const { data, states } of cases) assert.equal((await inspect(data)).map(inWords).join(", "), states);
});
