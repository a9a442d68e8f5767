// Reads the lines that `check` prints, which docs/formats.md defines.

/** @import { Disc, Flag, Flags, Savegame, Slot } from "./types.js" */

const disc2Heading = ">>>DISC2 SAVEGAME CONTENTS:\n";
const disc3Heading = "\n>>>DISC3 SAVEGAME CONTENTS:\n";
const discSize = 512; // bytes of a disc's savegame

/** @param {Uint8Array} bytes */
export function toText(bytes) {
  return new TextDecoder().decode(bytes);
}

/**
 * What stands before and after the first occurrence of the heading; if there is none, nothing stands after it.
 *
 * @param {string} text
 * @param {string} heading
 */
function splitAt(text, heading) {
  const [before, ...after] = text.split(heading);
  return [before, after.join(heading)];
}

/** The text about disc 2, and that about disc 3. @param {Uint8Array} output */
function splitDiscs(output) {
  return splitAt(splitAt(toText(output), disc2Heading)[1], disc3Heading);
}

/** @param {string[]} lines @returns {Slot[]} */
function parseSlots(lines) {
  return lines.flatMap((line) => {
    const match = /^(\d+)_item:(\d+)<(.*)> count:(\d+)(->not in inventory)?/.exec(line);
    if (!match) return [];
    const [, slot, id, name, count, unused] = match;
    return { slot, id, name, count, isUsed: unused === undefined };
  });
}

/** @param {string} text @param {Uint8Array} bytes @returns {Disc} */
function parseDisc(text, bytes) {
  const [scalars = [], inventory = [], chest = []] = text
    .split(/\n(?:inventory|chest): <\d+ items>\n/)
    .map((part) => part.split("\n"));
  const fields = new Map();
  const damagedPages = [];
  for (const line of scalars) {
    const match = /^(\w+):(?:<(.*?)>|(\w+))(?:.* valid:(\w+))?/.exec(line);
    if (!match) continue;
    const [, name, inBrackets, bare, valid] = match;
    fields.set(name, inBrackets ?? bare);
    if (valid === "false") damagedPages.push(Number(name.slice(-1)));
  }
  const hasSaved = fields.get("validsavegame") === "$55";
  const state = !hasSaved ? "none" : damagedPages.length > 0 ? "damaged" : "good";
  return {
    state,
    damagedPages: hasSaved ? damagedPages : [],
    fields,
    inventory: parseSlots(inventory),
    chest: parseSlots(chest),
    bytes,
  };
}

/**
 * The reports of disc 2 and disc 3, from what `check DATAFILE` printed, with the bytes of the data file.
 *
 * @param {Uint8Array} output
 * @param {Uint8Array} data
 * @returns {Savegame}
 */
export function parseReport(output, data) {
  return splitDiscs(output).map((text, i) => parseDisc(text, data.slice(i * discSize, (i + 1) * discSize)));
}

/** Name and value of each flag. @param {string} text */
function parseFlags(text) {
  return [...text.matchAll(/(.*?) = (-?\d+)\n/gs)].map(([, name, value]) => ({ name, value }));
}

/**
 * The flags by name, from what `check` printed with the game's sources. Nothing if the lists of both discs have different
 * names, since a name with line breaks can look like anything.
 *
 * @param {Uint8Array} output
 * @returns {Flags | undefined}
 */
export function parseFlagReport(output) {
  const [disc2, disc3] = splitDiscs(output).map((text) => {
    const [game, world] = splitAt(splitAt(text, ">>gameflags:\n")[1], ">>worldflags:\n");
    return { game: parseFlags(game), world: parseFlags(world) };
  });
  /** @param {"game" | "world"} list @returns {Flag[] | undefined} */
  function merge(list) {
    const [flags, others] = [disc2[list], disc3[list]];
    const isSame = flags.length === others.length && flags.every(({ name }, i) => name === others[i].name);
    return isSame ? flags.map(({ name, value }, i) => ({ name, values: [value, others[i].value] })) : undefined;
  }
  const [game, world] = [merge("game"), merge("world")];
  return game && world && { game, world };
}
