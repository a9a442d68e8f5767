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
const textSizeLimit = 4 * 1024 * 1024; // larger files are no sources

const whatIsAccepted =
  "Accepted are floppy images of 40 tracks (196,608 bytes), images of a memory expansion (REU, GeoRAM, NeoRAM, .ybn, " +
  ".fbn), savegame data files (1,024 bytes), and the game's sources.";

export function formatNumber(number) {
  return number.toLocaleString("en");
}

export function formatSize(size) {
  return `${formatNumber(size)} ${size === 1 ? "byte" : "bytes"}`;
}

/** In how many places two arrays of one length differ. Large ones are compared in slices, so that the page stays alive. */
async function countDifferences(bytes, otherBytes) {
  const sliceSize = 16 * 1024 * 1024;
  let count = 0;
  for (let start = 0; start < bytes.length; start += sliceSize) {
    const end = Math.min(start + sliceSize, bytes.length);
    for (let i = start; i < end; ++i) {
      if (bytes[i] !== otherBytes[i]) ++count;
    }
    if (end < bytes.length) await new Promise((resolve) => setTimeout(resolve));
  }
  return count;
}

export async function isEqual(bytes, otherBytes) {
  return bytes.length === otherBytes.length && (await countDifferences(bytes, otherBytes)) === 0;
}

function concatenate(bytes, tail) {
  const all = new Uint8Array(bytes.length + tail.length);
  all.set(bytes);
  all.set(tail, bytes.length);
  return all;
}

const namesOf = (medium) => medium.files.map(({ name }) => name);
const contentsOf = (medium) => Object.fromEntries(medium.files.map(({ name, bytes }) => [name, bytes]));

/** Runs the program to take the savegame out of a medium; `data` is missing if it refuses. */
async function tryToExtract(run, medium) {
  const args = [`extract${medium.command}`, ...namesOf(medium), dataFileName];
  const { exitStatus, output, files } = await run(args, contentsOf(medium));
  return { output: toText(output), data: exitStatus === 0 ? files[dataFileName] : undefined };
}

/** Runs the program to put a savegame into a medium, and returns the medium with it; nothing if the program refuses. */
async function tryToImplant(run, data, medium) {
  const args = [`implant${medium.command}`, dataFileName, ...namesOf(medium)];
  const { exitStatus, files } = await run(args, { ...contentsOf(medium), [dataFileName]: data });
  if (exitStatus !== 0) return undefined;
  return { ...medium, files: medium.files.map((file) => ({ ...file, bytes: files[file.name] })) };
}

/** The bytes of the savegame in a medium. Throws if the program refuses. */
async function extract(run, medium) {
  if (medium.command === "") return medium.files[0].bytes;
  const { data } = await tryToExtract(run, medium);
  if (data?.length !== dataFileSize) throw new Error("The savegame could not be taken out.");
  return data;
}

/** The medium with another savegame. Throws if the program refuses. */
async function implant(run, data, medium) {
  const made = await tryToImplant(run, data, medium);
  if (!made) throw new Error("The savegame could not be put in.");
  return made;
}

/** The medium under other names, so that no command that changes it names the person's files. */
function copyOf(medium) {
  const rename = (name) => name.replace(/(\.[^.]*)?$/, "-with-savegame$1");
  return { ...medium, files: medium.files.map((file) => ({ ...file, name: rename(file.name) })) };
}

/** What a data file holds: its bytes, and the reports of disc 2 and disc 3. */
async function inspect(run, data) {
  const { output } = await run(["check", dataFileName], { [dataFileName]: data });
  return { data, discs: parseReport(output) };
}

/** The savegame in a medium. */
export async function readSavegame(run, medium) {
  return inspect(run, await extract(run, medium));
}

export function hasSavegame(savegame) {
  return savegame.discs.some(({ state }) => state !== "none");
}

/** A data file of which no part equals another one. */
const markedSavegame = Uint8Array.from({ length: dataFileSize }, (_, i) => (i ** 3) >> 5);

/** Whether the medium has a place for every byte of a savegame. */
async function keepsSavegame(run, medium) {
  const made = await tryToImplant(run, markedSavegame, copyOf(medium));
  const { data } = made ? await tryToExtract(run, made) : {};
  return data !== undefined && isEqual(data, markedSavegame);
}

/** A text has no control characters but white space, and most of it is ASCII: unused memory may be full of 255. */
function isText(bytes) {
  const allowedControls = [9, 10, 12, 13, 26]; // white space, and the end of a file in DOS
  let asciiCount = 0;
  for (const byte of bytes) {
    if (byte < 32 && !allowedControls.includes(byte)) return false;
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
  const { output } = await tryToExtract(run, pairOf({ name, bytes }, { name, bytes }));
  const problem =
    "This is a floppy image of 35 tracks. The game uses 40 tracks, so its savegame cannot be moved into or out of this " +
    "file. The original image is needed: 40 tracks, 196,608 bytes.";
  return { kind: "refused", problem, output };
}

/** Why a file that is no medium cannot be used. */
function describeProblem({ length }, extension) {
  const isPowerOfTwo = Number.isInteger(Math.log2(length));
  const isNamedSo = ["reu", "georam", "neoram", "ybn", "fbn"].includes(extension);
  if (length >= leastExpansionSize && (isPowerOfTwo || isNamedSo)) {
    return (
      "This seems to be the image of a memory expansion, but it has no savegame and no place for one. Start the game once " +
      "with this image, let the emulator save the expansion, close the emulator, and add the file again."
    );
  }
  const reasons = {
    empty: "This file is empty: it has 0 bytes. Copy or download it again.",
    d64: `This file has ${formatSize(length)}, which is no size of a floppy image. It may be cut off: copy or download it again.`,
    other: `This is no file that a savegame can be moved into or out of: it has ${formatSize(length)}.`,
  };
  const reason = length === 0 ? "empty" : extension === "d64" ? "d64" : "other";
  return `${reasons[reason]} ${whatIsAccepted}`;
}

async function examineMemoryImage(run, { name, bytes }) {
  const extension = name.split(".").pop().toLowerCase();
  const medium = { command: ["ybn", "fbn"].includes(extension) ? extension : "reu", files: [{ name, bytes }] };
  const { data, output } = await tryToExtract(run, medium);
  if (data) {
    const savegame = await inspect(run, data);
    const canTake = await keepsSavegame(run, medium);
    if (canTake || hasSavegame(savegame)) return { kind: "memory", medium, savegame, canTake };
  }
  return { kind: "refused", problem: describeProblem(bytes, extension), output: data ? undefined : output };
}

/**
 * What a file is, by its size and contents and by what the program says about it. The kinds are "floppy", "memory",
 * "data", "source", and "refused" with the problem in words.
 */
export async function examine(run, file) {
  const size = file.bytes.length;
  if (size === floppySize || size === floppySize + errorBytesSize) return examineFloppy(run, file);
  if (floppySizesOf35Tracks.includes(size)) return examineFloppyOf35Tracks(run, file);
  if (size <= textSizeLimit && isText(file.bytes)) return { kind: "source" };
  if (size !== dataFileSize) return examineMemoryImage(run, file);
  const medium = { command: "", files: [file] };
  return { kind: "data", medium, savegame: await inspect(run, file.bytes) };
}

async function requireEqualFiles(medium, otherMedium) {
  for (const [i, { name, bytes }] of medium.files.entries()) {
    if (!(await isEqual(bytes, otherMedium.files[i].bytes))) throw new Error(`${name} is not as it has to be.`);
  }
}

/**
 * Puts the savegame of the source into copies of the target's files. Two comparisons prove it: the savegame comes out of
 * the copies as it was put in, and with their old savegame put back the copies equal the target.
 *
 * @returns {Promise<{name: string, bytes: Uint8Array, changedBytes: number, tailSize: number}[]>} the new files, in the
 *     order of the target's
 */
export async function transfer(run, source, target) {
  const data = await extract(run, source);
  const made = await implant(run, data, copyOf(target));
  if (!(await isEqual(await extract(run, made), data))) throw new Error("What came out is not what was put in.");
  await requireEqualFiles(await implant(run, await extract(run, target), made), target);
  return Promise.all(
    made.files.map(async ({ name, bytes, tail = new Uint8Array() }, i) => ({
      name,
      bytes: concatenate(bytes, tail),
      changedBytes: await countDifferences(bytes, target.files[i].bytes),
      tailSize: tail.length,
    })),
  );
}

/**
 * Takes the savegame of the source out into a data file. The proof: a copy of the source with another savegame equals the
 * source again after the data file was put into it.
 *
 * @returns {Promise<{name: string, bytes: Uint8Array}[]>} the data file
 */
export async function takeOut(run, source) {
  const data = await extract(run, source);
  const other = await implant(run, markedSavegame, copyOf(source));
  await requireEqualFiles(await implant(run, data, other), source);
  return [{ name: dataFileName, bytes: data }];
}

/**
 * Reads the flags with the game's sources: `paths` are those of the game flags, collectable ids and global definitions
 * among `files`. An included file that is not there is looked for among them by its last name, in any case of letters.
 *
 * @returns {Promise<{flags?: object, output: string, missing: string[]}>} no flags if a source failed, or a flag's name
 *     cannot be told from its value
 */
export async function readFlags(run, data, paths, files) {
  const lastName = (path) => path.split("/").pop().toLowerCase();
  const all = { ...files, [dataFileName]: data };
  for (;;) {
    const { exitStatus, output, missing } = await run(["check", dataFileName, ...paths], all);
    if (exitStatus === 0) return { flags: parseFlagReport(output), output: toText(output), missing };
    const inFolder = missing.filter((path) => path.split("/").every((part) => part !== "" && part !== ".."));
    const found = inFolder.map((path) => [path, Object.keys(files).find((name) => lastName(name) === lastName(path))]);
    const usable = found.filter(([, name]) => name !== undefined);
    if (usable.length === 0) return { output: toText(output), missing };
    for (const [path, name] of usable) all[path] = files[name];
  }
}
