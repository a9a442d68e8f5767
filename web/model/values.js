// What the values and items of a savegame are called.

/** @import { Disc, Slot } from "./types.js" */

/** The values whose meaning is known, by the names of the report, in the order in which they are shown. */
export const valueNames = new Map([
  ["money", "Money"],
  ["lives", "Lives"],
  ["maxLives", "Lives at most"],
  ["inventoryCount", "Items in the inventory"],
  ["savepointId", "Save point"],
  ["savegameid", "Number of the savegame"],
]);

const namesOfState = ["validsavegame", "checkSumPage0", "checkSumPage1"]; // what they say is shown as the state

/** The values that nobody can explain. They keep the names of the report. @param {Disc} disc */
export function otherValueNames({ fields }) {
  return [...fields.keys()].filter((name) => !valueNames.has(name) && !namesOfState.includes(name));
}

/** The item as words: "Potion healing". @param {Slot} slot */
export function itemName({ id, name }) {
  if (name === "undefined") return `Unknown item ${id}`;
  const words = name
    .replace(/^COLLECTABLE_/, "")
    .replaceAll("_", " ")
    .toLowerCase();
  return words.slice(0, 1).toUpperCase() + words.slice(1);
}

/** @param {Disc} disc */
export function countUsedItems({ inventory }) {
  return inventory.filter(({ isUsed }) => isUsed).length;
}

/**
 * Whether a slot of the chest may hold something. The chest does not say which of its slots are in use; one that was never
 * used looks like one piece of money, and an item without a name means nothing to anybody.
 *
 * @param {Slot} slot
 */
export function isLikelyUsed({ id, name, count }) {
  return name !== "undefined" && !(id === "0" && count === "1");
}
