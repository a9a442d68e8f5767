// Pairs of floppy images: which of them the names suggest, and how the person changes them. An image does not say which
// disc it is, so a guess is made only once, and only where it has one answer.
import { folderOf, readDiscName } from "./names.js";

/** @import { DiscNumber, FileFacts, Pair, Place } from "./types.js" */

/** @type {readonly DiscNumber[]} */
export const discNumbers = [2, 3];

/**
 * The pair and the place in which a file is.
 *
 * @param {Pair[]} pairs
 * @param {string} file its id
 */
export function findPlace(pairs, file) {
  for (const pair of pairs) {
    for (const disc of discNumbers) if (pair[disc]?.file === file) return { pair, disc };
  }
  return undefined;
}

/** @param {FileFacts[]} files */
function floppiesOf(files) {
  return files.filter(({ contents }) => contents.kind === "floppy");
}

/** The floppy images that are in no pair. @param {FileFacts[]} files @param {Pair[]} pairs */
export function findFreeFloppies(files, pairs) {
  return floppiesOf(files).filter(({ id }) => !findPlace(pairs, id));
}

/**
 * Whether another floppy image has the same number in a name of the same series, so that the names cannot say which of
 * them belongs to a third one.
 *
 * @param {FileFacts[]} files
 * @param {FileFacts} file
 */
export function hasTwin(files, file) {
  const { number, series } = readDiscName(file.path);
  return floppiesOf(files).some((other) => {
    const name = readDiscName(other.path);
    return other !== file && name.series === series && name.number === number;
  });
}

/**
 * The number that a name suggests. A disc with a savegame is 2 or 3 whatever its name says; one without, whose name says
 * another number, belongs into no pair.
 *
 * @param {FileFacts} file
 * @returns {DiscNumber | "unknown" | "other"}
 */
export function suggestedNumber({ path, contents }) {
  const { number } = readDiscName(path);
  if (number === 2 || number === 3) return number;
  const hasSavegame = contents.kind === "floppy" && contents.disc.state !== "none";
  return number === undefined || hasSavegame ? "unknown" : "other";
}

/**
 * Discs 2 and 3 whose names are of one series that has no other such discs among the files.
 *
 * @param {FileFacts[]} files
 * @returns {[FileFacts, FileFacts][]}
 */
function matchNames(files) {
  const found = files
    .filter((file) => suggestedNumber(file) === 2)
    .map((disc2) => {
      const { series } = readDiscName(disc2.path);
      const inSeries = files.filter(({ path }) => readDiscName(path).series === series);
      const discs3 = inSeries.filter((file) => suggestedNumber(file) === 3);
      const isOnlyOne = inSeries.filter((file) => suggestedNumber(file) === 2).length === 1;
      return isOnlyOne && discs3.length === 1 ? [disc2, discs3[0]] : undefined;
    });
  return /** @type {[FileFacts, FileFacts][]} */ (found.filter(Boolean));
}

/**
 * The only two images, if they are in one folder, and not both of them have a number in their name.
 *
 * @param {FileFacts[]} files
 * @returns {[FileFacts, FileFacts] | undefined}
 */
function matchOrder(files) {
  const inOrder = [...files].sort((a, b) => a.path.localeCompare(b.path, "en"));
  const [first, second] = inOrder;
  if (files.length !== 2 || folderOf(first.path) !== folderOf(second.path)) return undefined;
  const numbers = inOrder.map(suggestedNumber);
  if (!numbers.includes("unknown")) return undefined;
  return numbers[0] === 3 || numbers[1] === 2 ? [second, first] : [first, second];
}

/**
 * New pairs, of files that are in none yet: those of this batch, then those that are left of earlier ones. One of the two is
 * new: others were guessed before, or the person has left them apart.
 *
 * @param {FileFacts[]} files all
 * @param {Pair[]} pairs
 * @param {string} batch
 * @param {FileFacts[]} added the new ones
 * @returns {Omit<Pair, "id">[]}
 */
export function guessPairs(files, pairs, batch, added) {
  /** @type {Omit<Pair, "id">[]} */
  const guessed = [];
  const isPaired = (/** @type {FileFacts} */ { id }) =>
    guessed.some((pair) => pair[2]?.file === id || pair[3]?.file === id);
  const findCandidates = () =>
    findFreeFloppies(files, pairs).filter((file) => !isPaired(file) && suggestedNumber(file) !== "other");
  function add(/** @type {[FileFacts, FileFacts]} */ discs, /** @type {Place["grounds"]} */ grounds) {
    if (!discs.some((file) => added.includes(file))) return;
    guessed.push({ 2: { file: discs[0].id, grounds }, 3: { file: discs[1].id, grounds } });
  }

  matchNames(findCandidates().filter((file) => file.batch === batch)).forEach((discs) => add(discs, "names"));
  matchNames(findCandidates())
    .filter((discs) => !discs.some((file) => hasTwin(files, file)))
    .forEach((discs) => add(discs, "names"));
  const isWaiting = pairs.some((pair) => !pair[2] || !pair[3]); // maybe for one of them
  const inOrder = isWaiting ? undefined : matchOrder(findCandidates());
  if (inOrder) add(inOrder, "order");
  return guessed;
}

/** @param {Pair[]} pairs */
export function withoutEmptyPairs(pairs) {
  return pairs.filter((pair) => pair[2] || pair[3]);
}

/** Replaces a file in its place, or empties that. @param {Pair[]} pairs @param {string} file @param {Place} [by] */
export function replaceInPairs(pairs, file, by) {
  const found = findPlace(pairs, file);
  return pairs.map((pair) => (pair === found?.pair ? { ...pair, [found.disc]: by } : pair));
}

/**
 * Puts a file that was added anew into the place of the earlier one. Where nothing but an order was a ground, nothing else
 * is one now.
 *
 * @param {Pair[]} pairs
 * @param {string} old
 * @param {string} file
 */
export function renewInPairs(pairs, old, file) {
  const found = findPlace(pairs, old);
  const isOrder = found?.pair[found.disc]?.grounds === "order";
  return replaceInPairs(pairs, old, { file, grounds: isOrder ? "order" : "anew" });
}

/**
 * Puts a file into a place. The file that was there takes its place if that is in the same pair, or is in no pair then:
 * nobody has chosen it for another one.
 *
 * @param {Pair[]} pairs
 * @param {string} file
 * @param {string} pairId that of a new pair, if there is none
 * @param {DiscNumber} disc
 */
export function placeDisc(pairs, file, pairId, disc) {
  const all = pairs.some(({ id }) => id === pairId) ? pairs : [...pairs, { id: pairId }];
  const target = all.find(({ id }) => id === pairId);
  const other = target?.[disc]?.file;
  if (other === file) return pairs;
  const areTogether = findPlace(all, file)?.pair === target;
  const cleared = replaceInPairs(all, file, areTogether && other ? { file: other, grounds: "chosen" } : undefined);
  return cleared.map((pair) => (pair.id === pairId ? { ...pair, [disc]: { file, grounds: "chosen" } } : pair));
}

/**
 * Exchanges the discs of a pair. That they belong together is as sure as before.
 *
 * @param {Pair[]} pairs
 * @param {string} pairId
 */
export function exchangeDiscs(pairs, pairId) {
  const swap = (/** @type {Place | undefined} */ place) =>
    place && { ...place, grounds: place.grounds === "chosen" ? place.grounds : /** @type {const} */ ("swapped") };
  return pairs.map((pair) => (pair.id === pairId ? { ...pair, 2: swap(pair[3]), 3: swap(pair[2]) } : pair));
}
