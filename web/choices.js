// What can be done with a set of files. The person's choices count first; the rest is guessed from names, or is the only
// possibility.
import { hasSavegame, isEqual, pairOf } from "./media.js";
import { pageNames } from "./report.js";

/** A floppy image is disc 2 or 3 of one of two pairs, or not used, which is "". */
export const floppyRoles = ["first2", "first3", "second2", "second3"];

/** The roles of sources: the names of the game's own files, an included file, or not used, which is "". */
export const sourceRoles = ["scr_flags.asm", "scr_collectableids.asm", "scr_globaldefines.asm", "included"];

/**
 * What a name suggests: `number` is 2 or 3, or 1 for a disc that is neither of them, if any; `series` is what the name has
 * in common with that of the other discs. A disc with a savegame is 2 or 3 whatever its name says.
 */
function readDiscName({ path, disc }) {
  const [, folder = "", stem] = /^(.*\/)?(.*?)(?:\.[^.]*)?$/s.exec(path.toLowerCase());
  const numbers = [...stem.matchAll(/(dis[ck]|side|^|\D)[\s_.-]*(?<number>[1-9])(?!\d)/g)];
  const best = numbers.find((match) => /^(dis[ck]|side)/.test(match[0])) ?? numbers.at(-1);
  if (!best) return { series: path };
  const at = best.index + best[0].length - 1;
  const series = `${folder}${stem.slice(0, at)}#${stem.slice(at + 1)}`;
  const number = Number(best.groups.number);
  if (number === 2 || number === 3) return { number, series };
  return { number: disc.state === "none" ? 1 : undefined, series };
}

/** Discs 2 and 3 with names of one series, the nth of each together; those with a savegame first. */
function findPairs(floppies) {
  const named = floppies.map((file) => ({ file, ...readDiscName(file) }));
  const discs3 = named.filter(({ number }) => number === 3);
  const pairs = [];
  for (const disc2 of named.filter(({ number }) => number === 2)) {
    const at = discs3.findIndex(({ series }) => series === disc2.series);
    if (at >= 0) pairs.push([disc2.file, discs3.splice(at, 1)[0].file]);
  }
  const savedDiscs = (pair) => pair.filter(({ disc }) => disc.state !== "none").length;
  return pairs.sort((a, b) => savedDiscs(b) - savedDiscs(a));
}

/** The role of each floppy image by its id: the chosen ones, and a guess for the others. */
function assignFloppies(floppies, chosen) {
  const roles = new Map(floppies.map(({ id }) => [id, chosen.get(id)]));
  const isFree = (role) => ![...roles.values()].includes(role);
  const isOpen = ({ id }) => roles.get(id) === undefined;
  const give = (file, role) => roles.set(file.id, role);

  const inOrder = [...floppies].sort((a, b) => a.path.localeCompare(b.path, "en"));
  for (const pair of findPairs(inOrder)) {
    const side = ["first", "second"].find((name) => isFree(`${name}2`) && isFree(`${name}3`));
    if (side && pair.every(isOpen)) pair.forEach((file, i) => give(file, `${side}${i + 2}`));
  }
  for (const file of inOrder.filter(isOpen)) {
    const { number } = readDiscName(file);
    const possible = floppyRoles.filter((role) => isFree(role) && (!number || role.endsWith(number)));
    give(file, possible[0] ?? "");
  }
  return roles;
}

/** The role of each source by its id: the chosen ones, and those that the names say. */
function assignSources(sources, chosen) {
  const roles = new Map(sources.map(({ id }) => [id, chosen.get(id)]));
  const isTaken = (role) => [...roles.values()].includes(role);
  for (const { id, path } of sources) {
    const name = path.split("/").pop().toLowerCase();
    const isMain = sourceRoles.includes(name) && !isTaken(name);
    roles.set(id, roles.get(id) ?? (isMain ? name : "included"));
  }
  return roles;
}

/** The id of the file that has a role which only one file can have. */
export function findHolder(roles, role) {
  if (role === "" || role === "included") return undefined;
  return [...roles].find(([, taken]) => taken === role)?.[0];
}

/** Why these two are disc 2 and disc 3: "chosen" by the person, by their "names", or by nothing but their "order". */
function findGrounds(disc2, disc3, chosenByHand) {
  if (chosenByHand.has(disc2.id) || chosenByHand.has(disc3.id)) return "chosen";
  return [disc2, disc3].some((file) => readDiscName(file).number) ? "names" : "order";
}

/**
 * The pairs of floppy images: the side, the files of disc 2 and disc 3, one of which may be missing, whether both have
 * the same contents, and on what grounds they have their roles.
 */
function findPairsByRole(floppies, roles, chosenByHand) {
  const withRole = (role) => floppies.find(({ id }) => roles.get(id) === role);
  const pairs = ["first", "second"].map(async (side) => {
    const pair = { side, disc2: withRole(`${side}2`), disc3: withRole(`${side}3`) };
    if (!pair.disc2 || !pair.disc3) return pair;
    const isSame = await isEqual(pair.disc2.image.bytes, pair.disc3.image.bytes);
    return { ...pair, isSame, grounds: findGrounds(pair.disc2, pair.disc3, chosenByHand) };
  });
  return Promise.all(pairs);
}

/** What is wrong with the savegame of a medium. */
function findDamages({ savegame, title }) {
  return savegame.discs.flatMap(({ state, damagedPages }, i) => {
    const disc = `Disc ${i + 2}`;
    if (state === "none") return `Only disc ${3 - i} has a savegame; ${disc.toLowerCase()} has none (${title}).`;
    return damagedPages.map(
      (page) =>
        `${disc}: the checksum of ${pageNames[page]} is wrong (${title}). It is damaged, and moving does not repair it.`,
    );
  });
}

/** What the person has to agree to before anything is made. */
export function findConcerns({ from, into }) {
  const unordered = [from, into].filter(({ grounds }) => grounds === "order");
  const orders = unordered.map(({ files: [disc2, disc3] }) => {
    return `Nothing says whether ${disc2.title} or ${disc3.title} is disc 2. If the order is wrong, the game will not find its savegame.`;
  });
  return [...findDamages(from), ...orders];
}

/** The possible option with this key or, if there is none, the only possible one: of the likely options, or of all. */
function choose(options, key, likelyOptions) {
  const possible = options.filter(({ refusal }) => refusal === undefined);
  const likely = possible.filter((option) => likelyOptions.includes(option));
  const onlyOne = (all) => (all.length === 1 ? all[0] : undefined);
  return possible.find((option) => option.key === key) ?? onlyOne(likely) ?? onlyOne(possible);
}

/** All media among the files, with their savegames; `readPair` reads that of two floppy images. */
async function findMedia(files, pairs, readPair) {
  const media = [];
  for (const { side, disc2, disc3, isSame, grounds } of pairs.filter((pair) => pair.disc2 && pair.disc3)) {
    const savegame = await readPair(disc2, disc3);
    const refusal = isSame ? "Both discs have the same contents." : undefined;
    const medium = pairOf(disc2.image, disc3.image);
    media.push({ key: side, files: [disc2, disc3], medium, savegame, refusal, grounds, canTake: true });
  }
  for (const file of files.filter(({ kind }) => kind === "memory" || kind === "data")) {
    const { id, medium, savegame, canTake = false } = file;
    media.push({ key: id, files: [file], medium, savegame, canTake });
  }
  return media.map((entry) => ({ ...entry, title: entry.files.map(({ title }) => title).join(" and ") }));
}

/** The plan without files. */
export const emptyPlan = { roles: new Map(), pairs: [], media: [], fromOptions: [], intoOptions: [] };

/**
 * What can be done, and what of it is chosen: `roles` by the ids of files; `pairs`; all `media`; the options for `from`
 * and `into`, each with a `refusal` if it is impossible; and the chosen ones among them, if any.
 */
export async function makePlan(files, choices, readPair) {
  const floppies = files.filter(({ kind }) => kind === "floppy");
  const sources = files.filter(({ kind }) => kind === "source");
  const floppyRolesById = assignFloppies(floppies, choices.roles);
  const roles = new Map([...floppyRolesById, ...assignSources(sources, choices.roles)]);
  const allPairs = await findPairsByRole(floppies, roles, choices.byHand);
  const pairs = allPairs.filter(({ disc2, disc3 }) => disc2 || disc3);
  const media = await findMedia(files, pairs, readPair);

  const isAnywhere = media.some(({ savegame }) => hasSavegame(savegame));
  const noSavegame = isAnywhere ? "It holds no savegame." : "There is no savegame here: save in the game first.";
  const fromOptions = media.map((entry) => ({
    ...entry,
    refusal: entry.refusal ?? (hasSavegame(entry.savegame) ? undefined : noSavegame),
  }));
  const from = choose(fromOptions, choices.from, fromOptions);

  const images = media
    .filter(({ key, medium }) => key !== from?.key && medium.command !== "")
    .map((entry) => ({
      ...entry,
      refusal: entry.refusal ?? (entry.canTake ? undefined : "There is no place for a savegame."),
    }));
  const dataFile = { key: "data", title: "a savegame data file, as a backup" };
  const intoOptions = from && from.medium.command !== "" ? [...images, dataFile] : images;
  const into = from && choose(intoOptions, choices.into, images);
  return { roles, pairs, media, fromOptions, intoOptions, from, into };
}

/** What the roles of the two pairs are called: the one that is the target, or would be, is "second" unless exchanged. */
export function sideNames({ from, into }) {
  const isExchanged = from?.key === "second" || into?.key === "first";
  return isExchanged ? { first: "target", second: "source" } : { first: "source", second: "target" };
}
