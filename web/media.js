// What a file is, and how a savegame moves between files. Every step is a run of the program on copies, by a function
// `run` that takes and returns what `stashkeep` does.
//
// A medium is a memory image, a pair of floppy images, or a savegame data file: {command, files}. The command is what
// follows "extract" and "implant", or "" for a data file. Each file has a name and bytes; that of a floppy image also has
// a tail, its error bytes, which the program does not accept.
import { parseFlagReport, parseReport, toText } from "./report.js";

export const dataFileName = "zarnis-savegame.dat";

// In bytes. By these sizes a file is recognised.
const dataFileSize = 1024;
const floppySize = 196_608;
const errorBytesSize = 768;
const floppySizesOf35Tracks = [174_848, 175_531];
const leastExpansionSize = 65_536;

const whatIsAccepted =
  "Accepted are floppy images of 40 tracks (196,608 bytes), images of a memory expansion (REU, GeoRAM, NeoRAM, .ybn, " +
  ".fbn), savegame data files (1,024 bytes), and the game's sources.";

export function formatSize(size) {
  return `${size.toLocaleString("en")} ${size === 1 ? "byte" : "bytes"}`;
}

function countDifferences(bytes, otherBytes) {
  let count = 0;
  for (let i = 0; i < bytes.length; ++i) {
    if (bytes[i] !== otherBytes[i]) ++count;
  }
  return count;
}

export function isEqual(bytes, otherBytes) {
  return bytes.length === otherBytes.length && countDifferences(bytes, otherBytes) === 0;
}

function concatenate(bytes, tail) {
  const all = new Uint8Array(bytes.length + tail.length);
  all.set(bytes);
  all.set(tail, bytes.length);
  return all;
}

const namesOf = (medium) => medium.files.map(({ name }) => name);
const contentsOf = (medium) => Object.fromEntries(medium.files.map(({ name, bytes }) => [name, bytes]));

/** Runs the program to take the savegame out of a medium. */
function runExtract(run, medium) {
  return run([`extract${medium.command}`, ...namesOf(medium), dataFileName], contentsOf(medium));
}

/** The medium with another savegame, or with its own one if the program refuses that. */
async function implant(run, data, medium) {
  const args = [`implant${medium.command}`, dataFileName, ...namesOf(medium)];
  const { files } = await run(args, { ...contentsOf(medium), [dataFileName]: data });
  return { ...medium, files: medium.files.map((file) => ({ ...file, bytes: files[file.name] })) };
}

/** The bytes of the savegame in a medium, which is known to have a place for it. */
async function extract(run, medium) {
  if (medium.command === "") return medium.files[0].bytes;
  return (await runExtract(run, medium)).files[dataFileName];
}

/** The medium under other names, so that no command that changes it names the person's files. */
function copyOf(medium) {
  const rename = (name) => name.replace(/(\.[^.]*)?$/, "-with-savegame$1");
  return { ...medium, files: medium.files.map((file) => ({ ...file, name: rename(file.name) })) };
}

/** The savegame in a medium: its bytes, and the reports of disc 2 and disc 3. */
export async function readSavegame(run, medium) {
  const data = await extract(run, medium);
  const { output } = await run(["check", dataFileName], { [dataFileName]: data });
  return { data, discs: parseReport(output) };
}

export function hasSavegame(savegame) {
  return savegame.discs.some(({ state }) => state !== "none");
}

/** Whether a savegame of which no part equals another comes out of the medium as it was put in. */
async function keepsSavegame(run, medium) {
  const marked = Uint8Array.from({ length: dataFileSize }, (_, i) => (i * 167 + (i >> 8) * 59) % 256);
  const { files } = await runExtract(run, await implant(run, marked, copyOf(medium)));
  return files[dataFileName] !== undefined && isEqual(files[dataFileName], marked);
}

/** A text has no control characters but white space, and most of it is ASCII: unused memory may be full of 255. */
function isText(bytes) {
  const whiteSpace = [9, 10, 12, 13];
  let asciiCount = 0;
  for (const byte of bytes) {
    if (byte < 32 && !whiteSpace.includes(byte)) return false;
    if (byte < 128) ++asciiCount;
  }
  return asciiCount > bytes.length / 2;
}

export function pairOf(disc2, disc3) {
  return { command: "d64", files: [disc2, disc3] };
}

async function examineFloppy(run, { name, bytes }) {
  const image = { name, bytes: bytes.subarray(0, floppySize), tail: bytes.subarray(floppySize) };
  const { discs } = await readSavegame(run, pairOf(image, image));
  return { kind: "floppy", image, disc: discs[0] };
}

async function examineFloppyOf35Tracks(run, { name, bytes }) {
  const { output } = await runExtract(run, pairOf({ name, bytes }, { name, bytes }));
  const problem =
    "This is a floppy image of 35 tracks. The game uses 40 tracks, so its savegame cannot be moved into or out of this " +
    "file. The original image is needed: 40 tracks, 196,608 bytes.";
  return { kind: "refused", problem, output: toText(output) };
}

async function examineMemoryImage(run, { name, bytes }) {
  const extension = name.split(".").pop().toLowerCase();
  const medium = { command: ["ybn", "fbn"].includes(extension) ? extension : "reu", files: [{ name, bytes }] };
  const { exitStatus, output } = await runExtract(run, medium);
  if (exitStatus === 0) {
    const savegame = await readSavegame(run, medium);
    const canTake = await keepsSavegame(run, medium);
    if (canTake || hasSavegame(savegame)) return { kind: "memory", medium, savegame, canTake };
  }
  const isPowerOfTwo = Number.isInteger(Math.log2(bytes.length));
  const looksLikeOne = ["reu", "georam", "neoram", "ybn", "fbn"].includes(extension);
  const problem =
    (isPowerOfTwo && bytes.length >= leastExpansionSize) || looksLikeOne
      ? "This seems to be the image of a memory expansion, but it has no savegame and no place for one. Start the game " +
        "once with this image, let the emulator save the expansion, close the emulator, and add the file again."
      : `This is no file that a savegame can be moved into or out of: it has ${formatSize(bytes.length)}. ${whatIsAccepted}`;
  return { kind: "refused", problem, output: toText(output) };
}

/**
 * What a file is, by its size and contents and by what the program says about it. The kinds are "floppy", "memory",
 * "data", "source", and "refused" with the problem in words.
 */
export async function examine(run, file) {
  const size = file.bytes.length;
  if (isText(file.bytes)) return { kind: "source" };
  if (size === floppySize || size === floppySize + errorBytesSize) return examineFloppy(run, file);
  if (floppySizesOf35Tracks.includes(size)) return examineFloppyOf35Tracks(run, file);
  if (size !== dataFileSize) return examineMemoryImage(run, file);
  const medium = { command: "", files: [file] };
  return { kind: "data", medium, savegame: await readSavegame(run, medium) };
}

function requireEqualFiles(medium, otherMedium) {
  medium.files.forEach((file, i) => {
    if (!isEqual(file.bytes, otherMedium.files[i].bytes)) throw new Error(`${file.name} is not as it has to be.`);
  });
}

/**
 * Puts the savegame of the source into copies of the target's files. Two comparisons prove it: the savegame comes out of
 * the copies as it was put in, and with their old savegame put back the copies equal the target.
 *
 * @returns {Promise<{name: string, bytes: Uint8Array, oldName: string, tailSize: number,
 *     changedBytes: number}[]>} the new files
 */
export async function transfer(run, source, target) {
  const data = await extract(run, source);
  const made = await implant(run, data, copyOf(target));
  if (!isEqual(await extract(run, made), data)) throw new Error("What came out is not what was put in.");
  requireEqualFiles(await implant(run, await extract(run, target), made), target);
  return made.files.map(({ name, bytes, tail = new Uint8Array() }, i) => ({
    name,
    bytes: concatenate(bytes, tail),
    oldName: target.files[i].name,
    tailSize: tail.length,
    changedBytes: countDifferences(bytes, target.files[i].bytes),
  }));
}

/**
 * Takes the savegame of the source out into a data file. The proof: put into the source, it changes nothing there.
 *
 * @returns {Promise<{name: string, bytes: Uint8Array}[]>} the data file
 */
export async function takeOut(run, source) {
  const data = await extract(run, source);
  requireEqualFiles(await implant(run, data, copyOf(source)), source);
  return [{ name: dataFileName, bytes: data }];
}

/**
 * Reads the flags with the game's sources: `paths` are those of the game flags, collectable ids and global definitions
 * among `files`. An included file that is not there is looked for among them by its last name, in any case of letters.
 *
 * @returns {Promise<{flags?: object, output: string, missing: string[]}>} no flags if a source failed
 */
export async function readFlags(run, data, paths, files) {
  const lastName = (path) => path.split("/").pop().toLowerCase();
  const all = { ...files, [dataFileName]: data };
  for (;;) {
    const { exitStatus, output, missing } = await run(["check", dataFileName, ...paths], all);
    if (exitStatus === 0) return { flags: parseFlagReport(output), output: toText(output), missing };
    const inFolder = missing.filter((path) => !path.startsWith("/"));
    const found = inFolder.map((path) => [path, Object.keys(files).find((name) => lastName(name) === lastName(path))]);
    const usable = found.filter(([, name]) => name !== undefined);
    if (usable.length === 0) return { output: toText(output), missing };
    for (const [path, name] of usable) all[path] = files[name];
  }
}
