// Whether two savegames are the same, and what differs between them.
import { itemName, isLikelyUsed, valueNames } from "./values.js";

/** @import { Disc, Flag, Medium, Savegame, Slot } from "./types.js" */

/** @typedef {{title: string, values: string[]}} Difference with the values of both savegames */

/** In how many of the 1,024 bytes they differ. @param {Savegame} savegame @param {Savegame} other */
export function countDifferentBytes(savegame, other) {
  return savegame.reduce(
    (sum, { bytes }, i) => sum + bytes.filter((byte, at) => byte !== other[i].bytes[at]).length,
    0,
  );
}

/** How many there are of each item. @param {Slot[]} slots */
function countItems(slots) {
  /** @type {Map<string, number>} */
  const counts = new Map();
  for (const slot of slots) counts.set(itemName(slot), (counts.get(itemName(slot)) ?? 0) + Number(slot.count));
  return counts;
}

/** @param {string} where @param {Slot[]} slots @param {Slot[]} others @returns {Difference[]} */
function compareItems(where, slots, others) {
  const [counts, otherCounts] = [countItems(slots), countItems(others)];
  const names = [...new Set([...counts.keys(), ...otherCounts.keys()])];
  return names.map((name) => ({
    title: `${where}: ${name}`,
    values: [counts, otherCounts].map((all) => String(all.get(name) ?? 0)),
  }));
}

/** @param {Disc} disc @param {Disc} other @returns {Difference[]} */
function compareDiscs(disc, other) {
  const states = [disc, other].map(({ state }) => ({ none: "none", damaged: "damaged", good: "undamaged" })[state]);
  const state = { title: "Savegame", values: states };
  if (states.includes("none")) return [state];
  const values = [...valueNames].map(([name, title]) => ({
    title,
    values: [disc, other].map(({ fields }) => fields.get(name) ?? ""),
  }));
  const used = (/** @type {Disc} */ { inventory }) => inventory.filter(({ isUsed }) => isUsed);
  const kept = (/** @type {Disc} */ { chest }) => chest.filter(isLikelyUsed);
  return [
    state,
    ...values,
    ...compareItems("Inventory", used(disc), used(other)),
    ...compareItems("Chest", kept(disc), kept(other)),
  ];
}

/** @param {Difference} difference */
function isDifferent({ values: [value, other] }) {
  return value !== other;
}

/** The values and items that differ, disc by disc. @param {Savegame} savegame @param {Savegame} other */
export function compareSavegames(savegame, other) {
  return savegame.flatMap((disc, i) =>
    compareDiscs(disc, other[i])
      .filter(isDifferent)
      .map(({ title, values }) => ({ title: `Disc ${i + 2}: ${title}`, values })),
  );
}

/**
 * Flags, each with the values of the first savegame and then of the other one. Both lists have the same flags in the same
 * order, since they were read with the same sources.
 *
 * @param {Flag[]} flags
 * @param {Flag[]} others
 * @returns {Flag[]}
 */
export function joinFlags(flags, others) {
  return flags.map(({ name, values }, i) => ({ name, values: [...values, ...others[i].values] }));
}

/** Those that differ, likewise. @param {Flag[]} flags @param {Flag[]} others */
export function compareFlags(flags, others) {
  const isSame = (/** @type {Flag} */ { values }) => values.slice(0, 2).join() === values.slice(2).join();
  return joinFlags(flags, others).filter((flag) => !isSame(flag));
}

/** The first of the other media that has the same savegame. @param {Medium} medium @param {Medium[]} media */
export function findSameSavegame(medium, media) {
  return media.find((other) => other.id !== medium.id && countDifferentBytes(medium.savegame, other.savegame) === 0);
}

/**
 * What differs between the discs of one savegame although it should be the same on both, with the value of each. This can
 * be a sign of two discs that do not belong together.
 *
 * @param {Savegame} savegame
 * @returns {Difference[]}
 */
export function findRemarks(savegame) {
  if (savegame.some(({ state }) => state === "none")) return [];
  return ["money", "lives", "savegameid"]
    .map((name) => ({
      title: valueNames.get(name)?.toLowerCase() ?? name,
      values: savegame.map(({ fields }) => fields.get(name) ?? ""),
    }))
    .filter(isDifferent);
}
