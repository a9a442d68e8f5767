// Reads the flags of a savegame with the game's sources.
import { dataFileName, lastName } from "../model/names.js";
import { parseFlagReport, toText } from "../model/report.js";
import { isFileName } from "./paths.js";

/** @import { FlagReading, Flags } from "../model/types.js" */
/** @import { Run } from "./transfer.js" */

const runLimit = 3; // each one can show that more included files are missing

/** A source with its path among the person's files. @typedef {{path: string, bytes: Uint8Array}} Source */

/**
 * The path at which the program looks for an included file, if this is one that lies there or without its folders.
 *
 * @param {string} path
 */
function placeOf(path) {
  const inGenerated = /^(?:.*\/)?generated\/(.*)$/s.exec(path)?.[1];
  return inGenerated || !path.includes("/") ? `generated/${inGenerated ?? path}` : undefined;
}

/** The paths that a source seems to include. @param {Uint8Array} bytes */
function findIncludedPaths(bytes) {
  const names = toText(bytes).matchAll(/include\s+"?([^"\s;,]+)/gi);
  return [...names].map(([, name]) => `generated/${name.replaceAll("\\", "/")}`);
}

/**
 * Whether no name in a source can have a line break: every quoted text ends in its line and has no escapes.
 *
 * @param {Uint8Array} bytes
 */
function hasPlainNames(bytes) {
  const text = new TextDecoder("latin1").decode(bytes);
  return !text.replace(/"[^"\\\r\n]*"/g, "").includes('"');
}

/** @param {Flags} flags */
function valuesOf({ game, world }) {
  return [...game, ...world].flatMap(({ values }) => values);
}

/**
 * Whether all values are different ones in a savegame whose bits are all different. What does not change may be part of a
 * name with a line break.
 *
 * @param {Run} run
 * @param {string[]} args
 * @param {Record<string, Uint8Array>} files
 * @param {Flags} flags
 */
async function areAllValues(run, args, files, flags) {
  const opposite = files[dataFileName].map((byte) => ~byte);
  const { output } = await run(args, { ...files, [dataFileName]: opposite });
  const others = parseFlagReport(output);
  const otherValues = others && valuesOf(others);
  return otherValues !== undefined && valuesOf(flags).every((value, i) => value !== otherValues[i]);
}

/**
 * The flags with the sources. The program gets the main ones, which are game flags, collectable ids and global definitions,
 * and what they include. An included file that is not there is replaced by one with its last name, in any case of letters.
 *
 * @param {Run} run
 * @param {Uint8Array} data
 * @param {Source[]} main
 * @param {Source[]} included files that may be included, and others
 * @returns {Promise<FlagReading>}
 */
export async function readFlags(run, data, main, included) {
  const args = ["check", dataFileName, ...main.map(({ path }) => path)];
  const sources = Object.fromEntries(main.map(({ path, bytes }) => [path, bytes]));
  /** @type {FlagReading["standIns"]} */
  const standIns = [];
  const nameOf = (/** @type {string} */ path) => lastName(path).toLowerCase();
  const ofLastToFirst = [...included].reverse(); // so that the first of a name counts
  const byPlace = new Map(ofLastToFirst.map((source) => [placeOf(source.path), source]));
  const byName = new Map(ofLastToFirst.map((source) => [nameOf(source.path), source]));
  /** @param {string} path that the program wants to open @returns whether it can do so now, and could not before */
  function addSource(path) {
    const source = byPlace.get(path) ?? byName.get(nameOf(path));
    if (path in sources || !source || !isFileName(path)) return false;
    sources[path] = source.bytes;
    if (!byPlace.has(path)) standIns.push({ path, name: source.path });
    return true;
  }
  findIncludedPaths(main[2].bytes).forEach(addSource);
  for (let runs = 1; ; ++runs) {
    const all = { ...sources, [dataFileName]: data };
    const { exitStatus, output, missing } = await run(args, all);
    if (exitStatus !== 0 && runs < runLimit && missing.filter(addSource).length > 0) continue;
    const flags = exitStatus === 0 ? parseFlagReport(output) : undefined;
    const isSure =
      flags && (Object.values(sources).every(hasPlainNames) || (await areAllValues(run, args, all, flags)));
    if (isSure) return { flags, output: "", missing, standIns, isUnclear: false };
    return { output: toText(output), missing, standIns, isUnclear: exitStatus === 0 };
  }
}
