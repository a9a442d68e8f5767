// The native program as the page's function `run`, and media for it.
import { spawnSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const project = fileURLToPath(new URL("../../../", import.meta.url));
const program = join(project, "out/release/stashkeep");

function filesIn(folder) {
  const names = readdirSync(folder, { recursive: true }).filter((name) => statSync(join(folder, name)).isFile());
  return Object.fromEntries(names.map((name) => [name, new Uint8Array(readFileSync(join(folder, name)))]));
}

/** The first included file that a text names and that is not there: the program stops at it. */
function findMissing(files) {
  const texts = Object.values(files).map((bytes) => Buffer.from(bytes).toString("latin1"));
  const names = texts.flatMap((text) => [...text.matchAll(/include\s+(?:#\s+)?"(.*?)"/g)].map(([, name]) => name));
  return names.map((name) => `generated/${name}`).filter((path) => !(path in files)).slice(0, 1); // prettier-ignore
}

/** Runs the program in a folder that has only these files. */
export async function run(args, files) {
  const folder = mkdtempSync(join(tmpdir(), "stashkeep-native-"));
  try {
    for (const [name, bytes] of Object.entries(files)) {
      mkdirSync(dirname(join(folder, name)), { recursive: true });
      writeFileSync(join(folder, name), bytes);
    }
    const { status, stdout, error } = spawnSync(program, args, { cwd: folder, stdio: ["ignore"] });
    if (error) throw error;
    return { exitStatus: status, output: stdout, files: filesIn(folder), missing: findMissing(files) };
  } finally {
    rmSync(folder, { recursive: true });
  }
}

export const examples = filesIn(join(project, "examples"));
export const testFiles = filesIn(join(project, "tests"));
export const savegame = examples["savegame.dat"];

/** Bytes of which each page is filled with its own number, so that whatever moves shows where it was. */
export function pages(size) {
  return Uint8Array.from({ length: size }, (_, offset) => offset >> 8);
}

const placesOfPointers = [0x900, 0x908, 0x1100, 0x1108];

/** A memory image of 64 KiB, or of another size, with the offsets of the four pages. */
export function memoryImage(offsets = [0x4000, 0x4100, 0x8000, 0xff00], size = 0x10000) {
  const image = pages(size);
  for (const [i, offset] of offsets.entries()) new DataView(image.buffer).setUint32(placesOfPointers[i], offset, true);
  return image;
}

/** A floppy image with half of a savegame, and maybe error bytes. */
export function floppyImage(half, tail = new Uint8Array()) {
  const image = pages(196_608 + tail.length);
  image.set(half.subarray(0, 256), 0);
  image.set(half.subarray(256, 512), 0x400);
  image.set(tail, 196_608);
  return image;
}

/** The bytes with others at an offset. */
export function changed(bytes, offset, ...values) {
  const copy = bytes.slice();
  copy.set(values, offset);
  return copy;
}
