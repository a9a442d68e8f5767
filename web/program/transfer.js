// Moves a savegame between media. Every step is a run of the program on copies, by a function `run` that takes and returns
// what `stashkeep` does.
import { dataFileName, insertBeforeExtension } from "../model/names.js";

/** @import { MadeNames } from "../model/types.js" */

/** @import { Outcome } from "./stashkeep.js" */

/** @typedef {(args: string[], files: Record<string, Uint8Array>) => Promise<Outcome>} Run */

/**
 * A medium with its bytes. The command is what follows "extract" and "implant", or "" for a data file. A floppy image has
 * its error bytes, which the program does not accept, as `tail`.
 * @typedef {{command: string, files: {name: string, bytes: Uint8Array, tail?: Uint8Array}[]}} Images
 */

export const dataFileSize = 1024; // bytes

const sliceSize = 16 * 1024 * 1024; // bytes that are compared at once, so that the page stays alive

/** The same bytes, four in one number, if they lie so in memory. @param {Uint8Array} bytes */
function toWords({ buffer, byteOffset, length }) {
  return byteOffset % 4 === 0 && length % 4 === 0 ? new Uint32Array(buffer, byteOffset, length / 4) : undefined;
}

/** Until the page has done what waits. A timer would take a second if the page is hidden. */
function letOthersWork() {
  const { port1, port2 } = new MessageChannel();
  return new Promise((resolve) => {
    port1.onmessage = () => resolve(port1.close());
    port2.postMessage(undefined);
  });
}

/**
 * The next index from `start` on at which the numbers differ, or `end`.
 *
 * @param {Uint8Array | Uint32Array} numbers
 * @param {Uint8Array | Uint32Array} others
 * @param {number} start
 * @param {number} end
 */
function findDifference(numbers, others, start, end) {
  let at = start;
  while (at < end && numbers[at] === others[at]) ++at;
  return at;
}

/**
 * In how many places two arrays of one length differ. Where possible, four bytes are compared at once.
 *
 * @param {Uint8Array} bytes
 * @param {Uint8Array} otherBytes
 */
async function countDifferences(bytes, otherBytes) {
  const words = [toWords(bytes), toWords(otherBytes)];
  const [numbers, others] = words[0] && words[1] ? [words[0], words[1]] : [bytes, otherBytes];
  const step = bytes.length / numbers.length; // bytes in a number
  let count = 0;
  for (let start = 0; start < bytes.length; start += sliceSize) {
    const end = Math.min(start + sliceSize, bytes.length) / step;
    for (
      let i = findDifference(numbers, others, start / step, end);
      i < end;
      i = findDifference(numbers, others, i + 1, end)
    ) {
      for (let at = i * step; at < (i + 1) * step; ++at) if (bytes[at] !== otherBytes[at]) ++count;
    }
    if (end * step < bytes.length) await letOthersWork();
  }
  return count;
}

/** @param {Uint8Array} bytes @param {Uint8Array} otherBytes */
export async function isEqual(bytes, otherBytes) {
  return bytes.length === otherBytes.length && (await countDifferences(bytes, otherBytes)) === 0;
}

/** @param {Uint8Array} bytes @param {Uint8Array} tail */
function concatenate(bytes, tail) {
  if (tail.length === 0) return bytes; // they may be many
  const all = new Uint8Array(bytes.length + tail.length);
  all.set(bytes);
  all.set(tail, bytes.length);
  return all;
}

/** @param {Images} medium */
const namesOf = (medium) => medium.files.map(({ name }) => name);

/** @param {Images} medium */
const contentsOf = (medium) => Object.fromEntries(medium.files.map(({ name, bytes }) => [name, bytes]));

/**
 * Runs the program to take the savegame out of a medium; nothing if the program refuses.
 *
 * @param {Run} run
 * @param {Images} medium
 */
export async function tryToExtract(run, medium) {
  const args = [`extract${medium.command}`, ...namesOf(medium), dataFileName];
  const { exitStatus, files } = await run(args, contentsOf(medium));
  return exitStatus === 0 ? files[dataFileName] : undefined;
}

/**
 * Runs the program to put a savegame into a medium, and returns the medium with it; nothing if the program refuses.
 *
 * @param {Run} run
 * @param {Uint8Array} data
 * @param {Images} medium
 */
async function tryToImplant(run, data, medium) {
  const args = [`implant${medium.command}`, dataFileName, ...namesOf(medium)];
  const { exitStatus, files } = await run(args, { ...contentsOf(medium), [dataFileName]: data });
  if (exitStatus !== 0) return undefined;
  return { ...medium, files: medium.files.map((file) => ({ ...file, bytes: files[file.name] })) };
}

/** The bytes of the savegame in a medium. Throws if the program refuses. @param {Run} run @param {Images} medium */
export async function extract(run, medium) {
  if (medium.command === "") return medium.files[0].bytes;
  const data = await tryToExtract(run, medium);
  if (data?.length !== dataFileSize) throw new Error("The savegame could not be taken out.");
  return data;
}

/**
 * The medium with another savegame. Throws if the program refuses.
 *
 * @param {Run} run
 * @param {Uint8Array} data
 * @param {Images} medium
 */
async function implant(run, data, medium) {
  const made = await tryToImplant(run, data, medium);
  if (!made) throw new Error("The savegame could not be put in.");
  return made;
}

/**
 * The medium under other names, so that no command that changes it names the person's files.
 *
 * @param {Images} medium
 * @param {string[]} [names]
 */
function copyOf(medium, names) {
  const rename = (/** @type {string} */ name) => insertBeforeExtension(name, "-copy");
  return { ...medium, files: medium.files.map((file, i) => ({ ...file, name: names?.[i] ?? rename(file.name) })) };
}

/** A data file of which no part equals another one. */
const markedSavegame = Uint8Array.from({ length: dataFileSize }, (_, i) => (i ** 3) >> 5);

/** Whether the medium has a place for every byte of a savegame. @param {Run} run @param {Images} medium */
export async function keepsSavegame(run, medium) {
  const made = await tryToImplant(run, markedSavegame, copyOf(medium));
  const data = made && (await tryToExtract(run, made));
  return data !== undefined && isEqual(data, markedSavegame);
}

/** @param {Images} medium @param {Images} otherMedium */
async function requireEqualFiles(medium, otherMedium) {
  for (const [i, { name, bytes }] of medium.files.entries()) {
    if (!(await isEqual(bytes, otherMedium.files[i].bytes))) throw new Error(`${name} is not as it has to be.`);
  }
}

/** @typedef {{name: string, bytes: Uint8Array, changedBytes: number, tailSize: number}} Made */

/** A data file that was made, as it is. @param {string} name @param {Uint8Array} bytes @returns {Made} */
function toDataFile(name, bytes) {
  return { name, bytes, changedBytes: 0, tailSize: 0 };
}

/**
 * Puts the savegame of a medium into copies of another one's files. Two comparisons prove it: the savegame comes out of
 * the copies as it was put in, and with their old savegame put back the copies equal the originals.
 *
 * @param {Run} run
 * @param {Images} from
 * @param {Images} into
 * @param {MadeNames} names
 * @returns {Promise<Made[]>} the new files, in the order of the originals, and then the old savegame, if that has a name
 */
export async function transfer(run, from, into, names) {
  const data = await extract(run, from);
  const made = await implant(run, data, copyOf(into, names.files));
  if (!(await isEqual(await extract(run, made), data))) throw new Error("What came out is not what was put in.");
  const oldData = await extract(run, into);
  await requireEqualFiles(await implant(run, oldData, made), into);
  const copies = made.files.map(async ({ name, bytes, tail = new Uint8Array() }, i) => ({
    name,
    bytes: concatenate(bytes, tail),
    changedBytes: await countDifferences(bytes, into.files[i].bytes),
    tailSize: tail.length,
  }));
  return [...(await Promise.all(copies)), ...(names.backup ? [toDataFile(names.backup, oldData)] : [])];
}

/**
 * Takes the savegame of a medium out into a data file. The proof: a copy of the medium with another savegame equals the
 * medium again after the data file was put into it.
 *
 * @param {Run} run
 * @param {Images} from
 * @param {MadeNames} names
 */
export async function takeOut(run, from, names) {
  const data = await extract(run, from);
  const other = await implant(run, markedSavegame, copyOf(from));
  await requireEqualFiles(await implant(run, data, other), from);
  return [toDataFile(names.files[0], data)];
}
