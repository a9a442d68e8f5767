// What a file is, by its size and contents and by what the program says about it.
import { hasSavegame } from "../model/media.js";
import { dataFileName, extensionOf } from "../model/names.js";
import { parseReport } from "../model/report.js";
import { kindByBeginning, kindByExtension, kindBySize } from "./kinds.js";
import { dataFileSize, keepsSavegame, tryToExtract } from "./transfer.js";

/** @import { Contents, Savegame } from "../model/types.js" */
/** @import { Run } from "./transfer.js" */

// In bytes
export const floppySize = 196_608;
const errorBytesSize = 768;
const leastExpansionSize = 65_536;
const textSizeLimit = 4 * 1024 * 1024; // larger files are no sources

const memoryExtensions = ["reu", "georam", "neoram", "ybn", "fbn"];

/**
 * A text has no control characters but white space, and most of it is ASCII: unused memory may be full of 255.
 *
 * @param {Uint8Array} bytes
 */
function isText(bytes) {
  const allowedControls = [9, 10, 12, 13, 26]; // white space, and the end of a file in DOS
  let asciiCount = 0;
  for (const byte of bytes) {
    if (byte < 32 && !allowedControls.includes(byte)) return false;
    if (byte < 128) ++asciiCount;
  }
  return asciiCount > bytes.length / 2;
}

/** The savegame in a data file. @param {Run} run @param {Uint8Array} data @returns {Promise<Savegame>} */
async function inspect(run, data) {
  const { output } = await run(["check", dataFileName], { [dataFileName]: data });
  return parseReport(output, data);
}

/** @param {Run} run @param {string} name @param {Uint8Array} bytes @returns {Promise<Contents>} */
async function examineFloppy(run, name, bytes) {
  const image = { name, bytes: bytes.subarray(0, floppySize) };
  const data = await tryToExtract(run, { command: "d64", files: [image, image] });
  if (!data) throw new Error("The savegame could not be taken out.");
  const [disc] = await inspect(run, data);
  const isBlank = bytes.subarray(0, floppySize).every((byte) => byte === bytes[0]);
  return { kind: "floppy", disc, tailSize: bytes.length - floppySize, isBlank };
}

/** Why a file that is no medium cannot be used. @param {number} size @param {string} extension */
function findReason(size, extension) {
  if (size === 0) return "empty";
  const known = kindBySize(size);
  if (known) return known;
  const isPowerOfTwo = Number.isInteger(Math.log2(size));
  if (size >= leastExpansionSize && (isPowerOfTwo || memoryExtensions.includes(extension))) return "noPlace";
  return kindByExtension(extension) ?? "unknown";
}

/** @param {Run} run @param {string} name @param {Uint8Array} bytes @returns {Promise<Contents>} */
async function examineMemoryImage(run, name, bytes) {
  const extension = extensionOf(name);
  const command = ["ybn", "fbn"].includes(extension) ? extension : "reu";
  const medium = { command, files: [{ name, bytes }] };
  const data = await tryToExtract(run, medium);
  if (data) {
    const savegame = await inspect(run, data);
    const canTake = await keepsSavegame(run, medium);
    if (canTake || hasSavegame(savegame)) return { kind: "memory", command, savegame, canTake };
  }
  return { kind: "refused", reason: findReason(bytes.length, extension) };
}

/** @param {Run} run @param {string} name @param {Uint8Array} bytes @returns {Promise<Contents>} */
export async function examine(run, name, bytes) {
  const size = bytes.length;
  if (size === floppySize || size === floppySize + errorBytesSize) return examineFloppy(run, name, bytes);
  const beginning = kindByBeginning(bytes);
  const isOfText = size <= textSizeLimit && !kindBySize(size) && isText(bytes);
  if (beginning || isOfText) {
    const isIgnored = kindByExtension(extensionOf(name)) === "ignored";
    if (isIgnored) return { kind: "refused", reason: "ignored" };
    return beginning ? { kind: "refused", reason: beginning } : { kind: "source" };
  }
  if (size !== dataFileSize) return examineMemoryImage(run, name, bytes);
  return { kind: "data", savegame: await inspect(run, bytes) };
}
