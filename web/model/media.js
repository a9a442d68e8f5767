// The media among the files, and which of them can be chosen.
import { discNumbers } from "./pairs.js";

/** @import { FileFacts, Medium, Option, Pair, Savegame, State } from "./types.js" */

/** The choice of a new data file as the place for a savegame. */
export const newDataFile = "data";

/** @param {Savegame} savegame */
export function hasSavegame(savegame) {
  return savegame.some(({ state }) => state !== "none");
}

/** Whether there is nothing that could be lost: all bytes of a disc are the same. @param {Savegame} savegame */
export function isBlank(savegame) {
  return savegame.every(({ bytes }) => bytes.every((byte) => byte === bytes[0]));
}

/** @param {Medium} medium */
export function isOutdated({ files }) {
  return files.some((file) => file.isOutdated);
}

/** @param {Medium} medium */
export function titleOf({ files }) {
  return files.map(({ title }) => title).join(" and ");
}

/** @param {FileFacts[]} files @param {Pair} pair @returns {Medium | undefined} nothing if a place is empty */
export function mediumOfPair(files, pair) {
  const discs = discNumbers.flatMap((disc) => files.find(({ id }) => id === pair[disc]?.file) ?? []);
  if (discs.length < discNumbers.length) return undefined;
  const savegame = discs.flatMap(({ contents }) => (contents.kind === "floppy" ? contents.disc : []));
  const isSame = discs[0].content === discs[1].content;
  const id = discs.map((file) => file.id).join("+");
  return { id, kind: "pair", files: discs, pair, command: "d64", savegame, canTake: true, isSame };
}

/** @param {FileFacts} file @returns {Medium | undefined} nothing if it is no medium by itself */
export function mediumOfFile(file) {
  const { id, contents } = file;
  if (contents.kind !== "memory" && contents.kind !== "data") return undefined;
  const { kind, savegame } = contents;
  const [command, canTake] = contents.kind === "memory" ? [contents.command, contents.canTake] : ["", false];
  return { id, kind, files: [file], command, savegame, canTake, isSame: false };
}

/** @param {Pick<State, "files" | "pairs">} state @returns {Medium[]} */
export function findMedia({ files, pairs }) {
  return [
    ...pairs.flatMap((pair) => mediumOfPair(files, pair) ?? []),
    ...files.flatMap((file) => mediumOfFile(file) ?? []),
  ];
}

/**
 * What a savegame can be taken from. An option with a refusal cannot be chosen.
 *
 * @param {Pick<State, "files" | "pairs">} state
 * @returns {Option[]}
 */
export function findFromOptions(state) {
  const media = findMedia(state);
  const isAnywhere = media.some(({ savegame }) => hasSavegame(savegame));
  const noSavegame = isAnywhere ? "noSavegame" : "noSavegameAnywhere";
  return media.map((medium) => {
    if (medium.isSame) return { ...medium, refusal: "same" };
    if (isOutdated(medium)) return { ...medium, refusal: "outdated" };
    return hasSavegame(medium.savegame) ? medium : { ...medium, refusal: noSavegame };
  });
}

/**
 * The images that a savegame can be put into: all but that from which it comes. Those in which nothing is replaced come
 * first, and those that cannot be chosen last.
 *
 * @param {Pick<State, "files" | "pairs" | "choices">} state
 * @returns {Option[]}
 */
export function findIntoOptions(state) {
  const images = findMedia(state).filter(({ id, kind }) => id !== state.choices.from && kind !== "data");
  /** @type {Option[]} */
  const options = images.map((medium) => {
    if (medium.isSame) return { ...medium, refusal: "same" };
    if (isOutdated(medium)) return { ...medium, refusal: "outdated" };
    return medium.canTake ? medium : { ...medium, refusal: "noPlace" };
  });
  const rankOf = (/** @type {Option} */ option) => (!isPossible(option) ? 2 : isBlank(option.savegame) ? 0 : 1);
  return options.sort((a, b) => rankOf(a) - rankOf(b));
}

/** @param {Option} option */
export function isPossible({ refusal }) {
  return refusal === undefined;
}

/** The medium with this id. @param {Pick<State, "files" | "pairs">} state @param {string | undefined} id */
export function findMedium(state, id) {
  return id === undefined ? undefined : findMedia(state).find((medium) => medium.id === id);
}
