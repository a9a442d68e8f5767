import assert from "node:assert/strict";
import test from "node:test";
import { findRows, rowLimit } from "../../../web/model/search.js";

test("a search finds parts of names in any case of letters, and shows no more than the first rows", () => {
  const rows = ["FLAG_DOOR", "FLAG_doorway", "WORLDFLAG_GATE"].map((name) => ({ name }));
  assert.deepEqual(findRows(rows, "Door"), { count: 2, rows: rows.slice(0, 2) });
  assert.deepEqual(findRows(rows, "."), { count: 0, rows: [] });
  const many = Array.from({ length: 1000 }, (_, i) => ({ name: `FLAG_${i}` }));
  assert.deepEqual(findRows(many, ""), { count: 1000, rows: many.slice(0, rowLimit) });
});
