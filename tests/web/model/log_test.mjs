import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import test from "node:test";
import { commandLine, withEntry } from "../../../web/model/log.js";

test("a logged command gives a shell the same words, whatever the names are", () => {
  const args = ["check", "two words", "it's", '"$HOME" `ls` \\n', "line\nbreak", "-e", "*", "ü/a.dat", "", "~", "#"];
  const script = `stashkeep() { printf '%s\\0' "$@"; }\n${commandLine(args)}`;
  assert.deepEqual(execFileSync("sh", ["-c", script]).toString().split("\0").slice(0, -1), args);
  assert.equal(commandLine(["check", "a-b/c_d.dat"]), "stashkeep check a-b/c_d.dat");
});

test("the log does not grow without end", () => {
  const log = Array.from({ length: 600 }, (_, i) => ({ purpose: String(i) })).reduce(withEntry, []);
  assert.deepEqual([log.length, log.at(-1).purpose], [500, "599"]);
});
