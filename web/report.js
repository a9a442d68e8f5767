// Reads the lines that `check` prints, which docs/formats.md defines.

/** What the two pages of a disc's savegame are called; each has a checksum. */
export const pageNames = ["part 1 (the flags)", "part 2 (money, lives and items)"];

const disc2Heading = ">>>DISC2 SAVEGAME CONTENTS:\n";
const disc3Heading = "\n>>>DISC3 SAVEGAME CONTENTS:\n";

export function toText(bytes) {
  return new TextDecoder().decode(bytes);
}

/** What stands before and after the first occurrence of the heading; if there is none, nothing stands after it. */
function splitAt(text, heading) {
  const [before, ...after] = text.split(heading);
  return [before, after.join(heading)];
}

/** The text about disc 2, and that about disc 3. */
function splitDiscs(output) {
  return splitAt(splitAt(toText(output), disc2Heading)[1], disc3Heading);
}

function parseSlots(lines) {
  const slots = lines.map((line) => /^(\d+)_item:(\d+)<(.*)> count:(\d+)(->not in inventory)?/.exec(line));
  return slots
    .filter((match) => match)
    .map(([, slot, id, name, count, isUnused]) => ({ slot, id, name, count, isUsed: !isUnused }));
}

/**
 * The report of one disc. `state` is "none" if the game has not saved there, "damaged" or "good", which is what the
 * `stateLines` say; `damagedPages` are those with a wrong checksum; `fields` has the printed values by name.
 */
function parseDisc(text) {
  const [scalars, inventory, chest] = text
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
  const stateLines = scalars.filter((line) => /^(validsavegame|checkSumPage)/.test(line));
  return { state, stateLines, damagedPages, fields, inventory: parseSlots(inventory), chest: parseSlots(chest) };
}

/** The reports of disc 2 and disc 3, from what `check DATAFILE` printed. */
export function parseReport(output) {
  return splitDiscs(output).map(parseDisc);
}

/** Name and value of each flag. */
function parseFlags(text) {
  return [...text.matchAll(/(.*?) = (-?\d+)\n/gs)].map(([, name, value]) => ({ name, value }));
}

/** The flags of disc 2 with the values of both discs. */
function mergeFlags(disc2, disc3) {
  return disc2.map(({ name, value }, i) => ({ name, values: [value, disc3[i].value] }));
}

/**
 * The flags by name, from what `check` printed with the game's sources. Nothing if the lists of both discs have different
 * names, since a name with line breaks can look like anything.
 *
 * @returns {{game: {name: string, values: string[]}[], world: {name: string, values: string[]}[]} | undefined}
 */
export function parseFlagReport(output) {
  const [disc2, disc3] = splitDiscs(output).map((text) => {
    const [game, world] = splitAt(splitAt(text, ">>gameflags:\n")[1], ">>worldflags:\n");
    return { game: parseFlags(game), world: parseFlags(world) };
  });
  const namesOf = ({ game, world }) => JSON.stringify([game, world].map((flags) => flags.map(({ name }) => name)));
  if (namesOf(disc2) !== namesOf(disc3)) return undefined;
  return { game: mergeFlags(disc2.game, disc3.game), world: mergeFlags(disc2.world, disc3.world) };
}
