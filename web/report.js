// Reads the lines that `check` prints, which docs/formats.md defines.

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
 * The report of one disc. `state` is "none" if the game has not saved there, "damaged" or "good"; `damagedPages` are
 * those with a wrong checksum; `fields` has the printed values by name.
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
  return { state, damagedPages, fields, inventory: parseSlots(inventory), chest: parseSlots(chest) };
}

/** The reports of disc 2 and disc 3, from what `check DATAFILE` printed. */
export function parseReport(output) {
  return splitDiscs(output).map(parseDisc);
}

/** Name and value of each flag. A name may contain anything, even line breaks. */
function parseFlags(text) {
  return [...text.matchAll(/(.*?) = (-?\d+)\n/gs)].map(([, name, value]) => ({ name, value }));
}

/**
 * The flags by name, with their values on both discs, from what `check` printed with the game's sources.
 *
 * @returns {{game: {name: string, values: string[]}[], world: {name: string, values: string[]}[]}}
 */
export function parseFlagReport(output) {
  const discs = splitDiscs(output).map((text) => {
    const [game, world] = splitAt(splitAt(text, ">>gameflags:\n")[1], ">>worldflags:\n");
    return { game: parseFlags(game), world: parseFlags(world) };
  });
  const merge = (disc2, disc3) => disc2.map(({ name, value }, i) => ({ name, values: [value, disc3[i].value] }));
  return { game: merge(discs[0].game, discs[1].game), world: merge(discs[0].world, discs[1].world) };
}
