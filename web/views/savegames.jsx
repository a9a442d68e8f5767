// What a savegame holds, in words.
import { countDifferentBytes, compareSavegames, findRemarks } from "../model/compare.js";
import { hasSavegame } from "../model/media.js";
import { countUsedItems } from "../model/values.js";
import { formatNumber, Table } from "./parts.jsx";

/** @import { Disc, Savegame } from "../model/types.js" */

/** What the two pages of a disc's savegame are called; each has a checksum. */
export const pageNames = ["part 1 (the flags)", "part 2 (money, lives and items)"];

const differenceLimit = 100; // rows

/** @param {Disc[]} discs */
function describeItems(discs) {
  if (discs.length === 1) return `items ${countUsedItems(discs[0])}`;
  const counts = discs.flatMap((disc, i) => (disc.state === "none" ? [] : `${countUsedItems(disc)} on disc ${i + 2}`));
  return `items ${counts.join(", ")}`;
}

/** @param {Disc[]} discs one disc, or disc 2 and disc 3 */
export function describeHolding(discs) {
  const saved = discs.filter(({ state }) => state !== "none");
  if (saved.length === 0) return "no savegame";
  const values = (/** @type {string} */ name) =>
    [...new Set(saved.map(({ fields }) => fields.get(name)))].join(" and ");
  return `money ${values("money")}, lives ${values("lives")}, ${describeItems(discs)}`;
}

/** @param {{discs: Disc[]}} props */
function Badge({ discs }) {
  if (!hasSavegame(discs)) return <span class="badge">no savegame</span>;
  if (discs.some(({ state }) => state === "damaged")) return <span class="badge damaged">damaged savegame</span>;
  if (discs.some(({ state }) => state === "none")) return <span class="badge damaged">half a savegame</span>;
  return <span class="badge good">savegame</span>;
}

/** What there is, at a glance. @param {{discs: Disc[]}} props */
export function Summary({ discs }) {
  const missing = discs.length > 1 ? discs.flatMap(({ state }, i) => (state === "none" ? i + 2 : [])) : [];
  const isHalf = missing.length === 1;
  return (
    <p class="summary">
      <Badge discs={discs} /> {hasSavegame(discs) && describeHolding(discs)}
      {isHalf && ` (only on disc ${5 - missing[0]})`}
    </p>
  );
}

/** What is damaged. @param {{savegame: Savegame}} props */
export function Damages({ savegame }) {
  const damages = savegame.flatMap(({ damagedPages }, i) =>
    damagedPages.map((page) => `On disc ${i + 2}, ${pageNames[page]} is damaged: its check digit (checksum) is wrong.`),
  );
  return damages.map((text) => (
    <p key={text} class="remark">
      {text}
    </p>
  ));
}

/** What differs between disc 2 and disc 3; "" if nothing does. @param {Savegame} savegame */
export function describeRemarks(savegame) {
  return findRemarks(savegame)
    .map((remark) => `${remark.title} (${remark.values.join(" and ")})`)
    .join(", ");
}

/** What differs between disc 2 and disc 3, with a title in front. @param {{savegame: Savegame, title?: string}} props */
export function Remarks({ savegame, title }) {
  const remarks = describeRemarks(savegame);
  if (remarks === "") return undefined;
  return (
    <p class="remark">
      {title && `${title}: `}Disc 2 and disc 3 differ in {remarks}. Are they of the same savegame?
    </p>
  );
}

/**
 * Two savegames side by side: that they are the same, or what differs.
 *
 * @param {{savegames: Savegame[], headings: string[], caption: string}} props
 */
export function Differences({ savegames, headings, caption }) {
  const [savegame, other] = savegames;
  const count = countDifferentBytes(savegame, other);
  if (count === 0) return <p>Both savegames are the same: all 1,024 bytes are equal.</p>;
  const differences = compareSavegames(savegame, other);
  const bytes = `${formatNumber(count)} of 1,024 bytes differ.`;
  if (differences.length === 0)
    return <p>{bytes} They are flags, the order of items, or bytes that nobody can explain.</p>;
  const rows = differences.slice(0, differenceLimit).map(({ title, values }) => [title, ...values]);
  return (
    <>
      <Table caption={caption} headings={["What differs", ...headings]} rows={rows} />
      {differences.length > rows.length && <p>And {differences.length - rows.length} more.</p>}
      <p class="kind">{bytes} Flags, and bytes that nobody can explain, are not in this table.</p>
    </>
  );
}
