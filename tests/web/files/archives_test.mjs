import assert from "node:assert/strict";
import { File } from "node:buffer";
import test from "node:test";
import { gzipSync } from "node:zlib";
import fc from "fast-check";
import { strToU8, zipSync } from "fflate";
import { filesOfInput, readBytes } from "../../../web/files/reading.js";

globalThis.File ??= File; // older versions of Node have it only in this module

const image = new Uint8Array(200_000).fill(7, 100_000);
const packed = { level: 9 };
const stored = { level: 0 };

/** What the page finds in a file: the paths, and the bytes or why there are none. */
async function contentsOf(name, bytes, sizeBefore = 0) {
  const { files } = await filesOfInput({ files: [new File([bytes], name)] });
  const entries = files.map(async (given) => {
    const { bytes: found, reason } = await readBytes(given, sizeBefore);
    return [given.path, found ? Buffer.from(found) : reason];
  });
  return Object.fromEntries(await Promise.all(entries));
}

/** The bytes with others after the first occurrence of a mark, at an offset. */
function patched(bytes, mark, offset, ...values) {
  const copy = Buffer.from(bytes);
  copy.set(values, copy.indexOf(Buffer.from(mark)) + offset);
  return copy;
}
const directory = "PK\x01\x02";

test("the files in a ZIP file are read as if it were a folder", async () => {
  const files = { "my game": { "disc2.d64": [image, packed], "disc3.d64": [image, stored] }, empty: new Uint8Array() };
  const hidden = { __MACOSX: { "._a": strToU8("a") }, ".git": { "b.d64": strToU8("b") }, ".DS_Store": strToU8("c") };
  const zip = zipSync({ ...files, ...hidden, "./dos\\ü.dat": strToU8("d") }, { mtime: new Date(2020, 0, 2, 3, 4) });
  assert.deepEqual(await contentsOf("a.zip", zip), {
    "a.zip/my game/disc2.d64": Buffer.from(image),
    "a.zip/my game/disc3.d64": Buffer.from(image),
    "a.zip/empty": Buffer.alloc(0),
    "a.zip/./dos/ü.dat": Buffer.from("d"),
  });
  const { files: given } = await filesOfInput({ files: [new File([zip], "a.zip")] });
  assert.deepEqual([new Date(given[0].modified), given[0].archive], [new Date(2020, 0, 2, 3, 4), "a.zip"]);
});

test("a gzip file is read as a folder with one file", async () => {
  for (const [name, inside] of [
    ["game.reu.gz", "game.reu"],
    ["all.TGZ", "all.tar"],
    ["odd", "odd"],
  ]) {
    // prettier-ignore
    assert.deepEqual(await contentsOf(name, gzipSync(image)), { [`${name}/${inside}`]: Buffer.from(image) });
  }
});

test("what cannot be unpacked says why, and the others are read", async () => {
  const one = zipSync({ a: [image, packed], b: [strToU8("text"), stored] });
  const cases = [
    { what: "a wrong byte", zip: patched(one, "text", 0, 1), a: Buffer.from(image), b: "damagedArchive" },
    { what: "a wrong size", zip: patched(one, directory, 24, 1), a: "damagedArchive" },
    { what: "a wrong place", zip: patched(one, directory, 42, 9), a: "damagedArchive" },
    { what: "encrypted", zip: patched(one, directory, 8, 1), a: "encrypted" },
    { what: "another method", zip: patched(one, directory, 10, 12), a: "otherPacking" },
    { what: "a size that is too large", zip: patched(one, directory, 24, 0, 0, 0, 0x20), a: "tooLarge" },
  ];
  for (const { what, zip, a, b = Buffer.from("text") } of cases) {
    assert.deepEqual(await contentsOf("x.zip", zip), { "x.zip/a": a, "x.zip/b": b }, what);
  }
  assert.deepEqual(await contentsOf("x.zip", one.subarray(0, 300)), { "x.zip": "damagedArchive" });
  assert.deepEqual(await contentsOf("x.zip", patched(one, "PK\x05\x06", 10, 3)), { "x.zip": "damagedArchive" });
  assert.deepEqual(await contentsOf("x.zip", patched(one, "PK\x05\x06", 16, 255, 255, 255, 255)), {
    "x.zip": "otherPacking",
  });
  assert.deepEqual(await contentsOf("x.zip", zipSync({})), { "x.zip": "emptyArchive" });
  assert.deepEqual(await contentsOf("x.gz", gzipSync(image).subarray(0, 99)), { "x.gz/x": "damagedArchive" });
});

test("no more is unpacked than there is room for, whatever the archive says", async () => {
  const MiB = 1024 * 1024;
  const zip = zipSync({ a: [image, packed] });
  for (const [name, bytes, inside] of [
    ["x.zip", patched(zip, directory, 24, 1, 0, 0, 0), "a"],
    ["x.gz", gzipSync(image), "x"],
  ]) {
    // prettier-ignore
    assert.deepEqual(await contentsOf(name, bytes, 512 * MiB - 1000), { [`${name}/${inside}`]: "noRoom" });
  }
});

test("whatever the bytes are, each file of an archive is given within the limits or refused", async () => {
  const whole = Buffer.from(zipSync({ a: [image, packed], "b/c": [strToU8("text"), stored], d: gzipSync(image) }));
  const changes = fc.array(fc.tuple(fc.nat(whole.length - 1), fc.nat(255)), { maxLength: 8 });
  const limit = 300_000; // bytes
  const property = fc.asyncProperty(changes, fc.nat(whole.length), async (patches, length) => {
    const bytes = Buffer.from(whole);
    for (const [at, value] of patches) bytes[at] = value;
    const found = await contentsOf("x.zip", bytes.subarray(0, Math.max(4, length)), 512 * 1024 * 1024 - limit);
    for (const [path, contents] of Object.entries(found)) {
      const isRefused = /^(damagedArchive|emptyArchive|encrypted|otherPacking|noRoom)$/.test(contents);
      assert.ok(isRefused || contents.length <= limit, `${path}: ${contents}`);
    }
  });
  await fc.assert(property, { numRuns: 2000 });
});
