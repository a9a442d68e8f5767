// What can be done with a set of files. The person's choices count first; the rest is guessed from names, or is the only
// possibility.
import { hasSavegame, isEqual, pairOf } from "./media.js";

/** A floppy image is disc 2 or 3 of one of two pairs, or not used, which is "". */
export const floppyRoles = ["first2", "first3", "second2", "second3"];

/** The roles of sources: the names of the game's own files, an included file, or not used, which is "". */
export const sourceRoles = ["scr_flags.asm", "scr_collectableids.asm", "scr_globaldefines.asm", "included"];

const savedNothing = "There is no savegame here: save in the game first.";
const sameDiscs = "Both discs are the same file.";

/** The number of the disc that a name suggests, if any, and what the name has in common with that of the other discs. */
function readDiscName(path) {
  const [, folder, stem] = /^(.*\/)?(.*?)(?:\.[^.]*)?$/.exec(path.toLowerCase());
  const numbers = [...stem.matchAll(/(dis[ck]|side|^|\D)[\s_.-]*(?<number>[1-9])(?!\d)/g)];
  const best = numbers.find((match) => /^(dis[ck]|side)/.test(match[0])) ?? numbers.at(-1);
  if (!best) return { series: path };
  const at = best.index + best[0].length - 1;
  return { number: Number(best.groups.number), series: `${folder}${stem.slice(0, at)}#${stem.slice(at + 1)}` };
}

function inOrderOfNames(files) {
  return [...files].sort((a, b) => (a.path < b.path ? -1 : 1));
}

/** Discs 2 and 3 with names of one series; those with a savegame first. */
function findPairs(floppies) {
  const named = floppies.map((file) => ({ file, ...readDiscName(file.path) }));
  const pairs = named
    .filter(({ number }) => number === 2)
    .map((disc2) => [disc2, named.find(({ number, series }) => number === 3 && series === disc2.series)])
    .filter(([, disc3]) => disc3)
    .map((discs) => discs.map(({ file }) => file));
  const savedDiscs = (pair) => pair.filter(({ disc }) => disc.state !== "none").length;
  return pairs.sort((a, b) => savedDiscs(b) - savedDiscs(a));
}

/** The role of each floppy image by its id: the chosen ones, and a guess for the others. */
function assignFloppies(floppies, chosen) {
  const roles = new Map(floppies.map(({ id }) => [id, chosen.get(id)]));
  const isFree = (role) => ![...roles.values()].includes(role);
  const isOpen = ({ id }) => roles.get(id) === undefined;
  const give = (file, role) => roles.set(file.id, role);

  for (const pair of findPairs(inOrderOfNames(floppies))) {
    const side = ["first", "second"].find((name) => isFree(`${name}2`) && isFree(`${name}3`));
    if (side && pair.every(isOpen)) pair.forEach((file, i) => give(file, `${side}${i + 2}`));
  }
  for (const file of inOrderOfNames(floppies).filter(isOpen)) {
    const { number } = readDiscName(file.path);
    const possible = floppyRoles.filter((role) => isFree(role) && (!number || role.endsWith(number)));
    give(file, possible[0] ?? "");
  }
  return roles;
}

/** The role of each source by its id: the chosen ones, and those that the names say. */
export function assignSources(sources, chosen) {
  const roles = new Map(sources.map(({ id }) => [id, chosen.get(id)]));
  const isTaken = (role) => [...roles.values()].includes(role);
  for (const { id, path } of sources) {
    const name = path.split("/").pop().toLowerCase();
    const isMain = sourceRoles.includes(name) && !isTaken(name);
    roles.set(id, roles.get(id) ?? (isMain ? name : "included"));
  }
  return roles;
}

/** Gives a file a role; the file that had it gets the role of the first one. */
export function exchangeRoles(roles, id, role) {
  const exchanged = new Map(roles);
  const [other] = [...roles].find(([, taken]) => taken === role && role !== "" && role !== "included") ?? [];
  if (other !== undefined) exchanged.set(other, roles.get(id));
  return exchanged.set(id, role);
}

/**
 * The pairs of floppy images: the side, the files of disc 2 and disc 3, one of which may be missing, whether both have
 * the same contents, and whether their roles are guessed.
 */
function findPairsByRole(floppies, roles, chosen) {
  const withRole = (role) => floppies.find(({ id }) => roles.get(id) === role);
  return ["first", "second"].flatMap((side) => {
    const [disc2, disc3] = [withRole(`${side}2`), withRole(`${side}3`)];
    if (!disc2 && !disc3) return [];
    const isSame = disc2 && disc3 && isEqual(disc2.image.bytes, disc3.image.bytes);
    return { side, disc2, disc3, isSame, isGuess: !chosen.has(disc2?.id) };
  });
}

/** What is wrong with a savegame so that it should be moved only if the person wants that. */
export function findConcerns(savegame) {
  const pages = ["part 1 (the flags)", "part 2 (money, lives and items)"];
  return savegame.discs.flatMap(({ state, damagedPages }, i) => {
    const disc = `Disc ${i + 2}`;
    if (state === "none") return `Only disc ${3 - i} has a savegame; ${disc.toLowerCase()} has none.`;
    return damagedPages.map((page) => `${disc}: the checksum of ${pages[page]} is wrong. This part is damaged.`);
  });
}

/** The possible option with this key or, if there is none, the only possible one of the likely options. */
function choose(options, key, likelyOptions) {
  const isPossible = ({ refusal }) => refusal === undefined;
  const [first, ...others] = likelyOptions.filter(isPossible);
  const only = others.length === 0 ? first : undefined;
  return options.filter(isPossible).find((option) => option.key === key) ?? only;
}

/** All media among the files, with their savegames; `readPair` reads that of two floppy images. */
async function findMedia(files, pairs, readPair) {
  const media = [];
  for (const { side, disc2, disc3, isSame } of pairs.filter((pair) => pair.disc2 && pair.disc3)) {
    const medium = pairOf(disc2.image, disc3.image);
    const refusal = isSame ? sameDiscs : undefined;
    media.push({ key: side, medium, savegame: await readPair(disc2, disc3), refusal, canTake: true });
  }
  for (const { id, kind, medium, savegame, canTake = false } of files) {
    if (kind === "memory" || kind === "data") media.push({ key: id, medium, savegame, canTake });
  }
  return media.map((entry) => ({ ...entry, title: entry.medium.files.map(({ name }) => name).join(" and ") }));
}

/** The plan without files. */
export const emptyPlan = { roles: new Map(), pairs: [], media: [], fromOptions: [], intoOptions: [] };

/**
 * What can be done, and what of it is chosen: `roles` by the ids of files; `pairs`; all `media`; the options for `from`
 * and `into`, each with a `refusal` if it is impossible; and the chosen ones among them, if any.
 */
export async function makePlan(files, choices, readPair) {
  const ofKind = (kind) => files.filter((file) => file.kind === kind);
  const floppyRolesById = assignFloppies(ofKind("floppy"), choices.roles);
  const pairs = findPairsByRole(ofKind("floppy"), floppyRolesById, choices.roles);
  const media = await findMedia(files, pairs, readPair);

  const fromOptions = media.map((entry) => ({
    ...entry,
    refusal: entry.refusal ?? (hasSavegame(entry.savegame) ? undefined : savedNothing),
  }));
  const from = choose(fromOptions, choices.from, fromOptions);
  const intoOptions = media
    .filter(({ key, medium }) => key !== from?.key && medium.command !== "")
    .map((entry) => ({
      ...entry,
      refusal: entry.refusal ?? (entry.canTake ? undefined : "There is no place for a savegame."),
    }));
  if (from && from.medium.command !== "") intoOptions.push({ key: "data", title: "a savegame data file" });
  const images = intoOptions.filter(({ key }) => key !== "data");
  const into = from && choose(intoOptions, choices.into, images.length > 0 ? images : intoOptions);
  const roles = new Map([...floppyRolesById, ...assignSources(ofKind("source"), choices.roles)]);
  return { roles, pairs, media, fromOptions, intoOptions, from, into };
}

/** What the roles of the two pairs are called: the one that is the target, or would be, is "second" unless exchanged. */
export function sideNames({ from, into }) {
  const isExchanged = from?.key === "second" || into?.key === "first";
  return isExchanged ? { first: "target", second: "source" } : { first: "source", second: "target" };
}
