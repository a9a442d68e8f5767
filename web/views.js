// The parts of the page that follow from files and choices. Each function makes elements, and knows no state.
import { floppyRoles, sideNames, sourceRoles } from "./choices.js";
import { button, element, paragraph, select, table, withBreaks } from "./elements.js";
import { formatSize } from "./media.js";

const kindNames = {
  floppy: "Floppy image of 40 tracks",
  memory: "Image of a memory expansion",
  data: "Savegame data file",
  source: "Source of the game, or another text",
  refused: "Cannot be used",
};

const discColumns = ["Disc\u00a02", "Disc\u00a03"];
const partNames = ["part 1 (flags)", "part 2 (money, lives, items)"];

function describeState({ state, damagedPages }) {
  if (state === "none") return "no savegame";
  if (state === "good") return "savegame, checksums right";
  return `savegame, ${damagedPages.map((page) => partNames[page]).join(" and ")} damaged (wrong checksum)`;
}

function countUsedItems({ inventory }) {
  return inventory.filter(({ isUsed }) => isUsed).length;
}

function stateBadge(disc) {
  return element("span", { className: `badge ${disc.state}` }, describeState(disc));
}

/** What a disc holds, at a glance. */
function discSummary(disc, title = "") {
  const { state, fields } = disc;
  const values = [`Money ${fields.get("money")}`, `lives ${fields.get("lives")}`, `items ${countUsedItems(disc)}`];
  return element("p", { className: "summary" }, title, stateBadge(disc), state === "none" ? "" : values.join(", "));
}

function contentSummary(file) {
  if (file.kind === "floppy") return [discSummary(file.disc)];
  return (file.savegame?.discs ?? []).map((disc, i) => discSummary(disc, `Disc ${i + 2}`));
}

export function programOutput(output) {
  return element("div", {}, paragraph("The program says:", "kind"), element("pre", {}, output));
}

function roleSelect(file, plan, onrole) {
  const sides = sideNames(plan);
  const texts = {
    floppy: floppyRoles.map((role) => [role, `disc ${role.slice(-1)} of the ${sides[role.slice(0, -1)]}`]),
    source: sourceRoles.map((role) => [role, role === "included" ? "included file, in generated/" : role]),
  };
  const options = texts[file.kind];
  if (!options) return undefined;
  return select(`role-${file.id}`, "Used as", [...options, ["", "not used"]], plan.roles.get(file.id), onrole);
}

function removeButton(file, onremove) {
  return button(`remove-${file.id}`, "Remove", () => onremove(file), { "aria-label": `Remove ${file.path}` });
}

/** A file in the list: what it is, what it holds, what it is used as. */
function fileItem(file, plan, { onrole, onremove }) {
  const tail = file.image?.tail.length ?? 0;
  const tailNote =
    `Its last ${tail} bytes are error bytes. The image is used without them, and a new image gets them back unchanged at ` +
    "its end.";
  return element(
    "li",
    { className: `file ${file.kind}` },
    element("div", { className: "file-head" }, element("h3", {}, file.path), removeButton(file, onremove)),
    paragraph(`${kindNames[file.kind]}, ${formatSize(file.size)}`, "kind"),
    contentSummary(file),
    tail > 0 ? paragraph(tailNote) : "",
    file.problem ? paragraph(file.problem) : "",
    file.output ? programOutput(file.output) : "",
    roleSelect(file, plan, (role) => onrole(file, role)),
  );
}

/** The list of files; the sources, which tend to be many, are folded. */
export function fileList(files, plan, actions) {
  const items = (isListed) => files.filter(isListed).map((file) => fileItem(file, plan, actions));
  const sources = items(({ kind }) => kind === "source");
  const media = items(({ kind }) => kind !== "source");
  const title = `Sources of the game, and other texts: ${sources.length}`;
  return [
    element("ul", { className: "files" }, media),
    sources.length > 0
      ? element(
          "details",
          { id: "sources" },
          element("summary", {}, title),
          element("ul", { className: "files" }, sources),
        )
      : "",
  ];
}

/** What is known about the floppy images together: which disc is missing, and that the order is a guess. */
export function discNotes(plan, onswap) {
  const sides = sideNames(plan);
  return plan.pairs.map(({ side, disc2, disc3, isSame, isGuess }) => {
    const which = plan.pairs.length > 1 ? ` of the ${sides[side]}` : "";
    if (!disc2 || !disc3) {
      const given = disc2 ?? disc3;
      return paragraph(
        `Disc ${disc2 ? 3 : 2}${which} is missing: ${given.path} is one floppy image of two. Please add the other one.`,
        "warning",
      );
    }
    if (isSame) {
      return paragraph(
        `${disc2.path} and ${disc3.path} are the same file: one of them is the wrong disc. Nothing can be moved with them.`,
        "warning",
      );
    }
    return element(
      "div",
      { className: "note" },
      paragraph(
        `The images do not say which disc they are. ${isGuess ? "This is a guess from their names" : "As you have chosen"}: ` +
          `${disc2.path} is disc 2${which}, and ${disc3.path} is disc 3.`,
      ),
      button(`swap-${side}`, `Swap disc 2 and disc 3${which}`, () => onswap(disc2, disc3)),
    );
  });
}

/** The savegame in the target beside the one that replaces it. */
export function comparison(from, into) {
  const rows = into.savegame.discs.flatMap((old, i) => {
    const disc = from.savegame.discs[i];
    const row = (title, read) => [`Disc ${i + 2}: ${title}`, read(old), read(disc)];
    const field = (name) => row(name, ({ state, fields }) => (state === "none" ? "–" : fields.get(name)));
    return [
      row("savegame", describeState),
      field("money"),
      field("lives"),
      row("items", (side) => (side.state === "none" ? "–" : String(countUsedItems(side)))),
    ];
  });
  return table(`${into.title} holds a savegame already`, ["Value", "There now", "After the transfer"], rows);
}

/** What the comparisons of a transfer have shown. */
function proofsOf({ files, from, into }) {
  if (into.key === "data") {
    return [
      `Put back into a copy of ${from.title}, the data file gives exactly ${from.title}: nothing is missing in it.`,
    ];
  }
  return [
    "All 1,024 bytes of the savegame are equal: what was put in comes out again.",
    ...files.map(
      ({ name, bytes, oldName, changedBytes, tailSize }) =>
        `${changedBytes} of ${formatSize(bytes.length)} changed between ${oldName} and ${name}.` +
        (tailSize > 0 ? ` Its last ${tailSize} bytes are the error bytes of ${oldName}, unchanged.` : ""),
    ),
    `With the old savegame put back, ${files.length > 1 ? "they equal" : "it equals"} ${into.title}: nothing else has changed.`,
  ];
}

function nextSteps({ files, into }) {
  if (into.key === "data") {
    return ["Keep the file: it holds the whole savegame. Given to this page, it can be put into an image at any time."];
  }
  return [
    "Close the emulator first. When it ends, it may write its own contents over a file.",
    `In the emulator, use the new ${files.length > 1 ? "images" : "image"} in place of ${into.title}.`,
    `Keep ${into.title} until the game has loaded the savegame.`,
  ];
}

/** What a transfer has made: what was compared, the buttons to save it, and what to do next. */
export function transferResult(made, onsave) {
  const names = made.files.map(({ name }) => name).join(" and ");
  const hasFloppies = [made.from, made.into].some(({ medium }) => medium?.command === "d64");
  const unchecked = [
    hasFloppies ? "whether disc 2 and disc 3 are in the right order, and " : "",
    "whether the game loads it",
  ];
  const items = (texts) => texts.map((text) => element("li", {}, text));
  return element(
    "div",
    { className: "success" },
    element("h3", { id: "result-heading", tabIndex: -1 }, `Compared and ready to be saved: ${names}`),
    element("ul", {}, items(proofsOf(made))),
    paragraph(`Not checked: ${unchecked.join("")}.`),
    element(
      "p",
      { className: "buttons" },
      made.files.map((file, i) => button(`save-${i}`, `Save ${file.name}`, () => onsave(file), { className: "main" })),
    ),
    element("h4", {}, "What to do next"),
    element("ol", {}, items(nextSteps(made))),
  );
}

function itemName({ id, name }) {
  return name === "undefined" ? id : name.replace(/^COLLECTABLE_/, "");
}

function slotTable(caption, slots) {
  return table(
    caption,
    ["Slot", "Item", "Count"],
    slots.map((slot) => [slot.slot, withBreaks(itemName(slot)), slot.count]),
  );
}

function slotTables(disc, title) {
  const unused = disc.inventory.filter(({ isUsed }) => !isUsed);
  return [
    slotTable(
      `${title}: inventory`,
      disc.inventory.filter(({ isUsed }) => isUsed),
    ),
    element(
      "details",
      {},
      element("summary", {}, `Inventory slots that are not in use: ${unused.length}`),
      slotTable(`${title}: not in use`, unused),
    ),
    slotTable(`${title}: chest`, disc.chest),
  ];
}

/** The values whose meaning is known, in this order. The others keep the names of the report. */
const valueNames = {
  money: "Money",
  lives: "Lives",
  maxLives: "Lives at most",
  inventoryCount: "Items in the inventory",
  savepointId: "Save point",
};
const shownAsState = ["validsavegame", "checkSumPage0", "checkSumPage1"];

/** The values of both discs side by side, and the items of each. */
export function savegameReport({ discs }) {
  const hasOtherPlace = (name) => shownAsState.includes(name) || name in valueNames;
  const otherNames = [...discs[0].fields.keys()].filter((name) => !hasOtherPlace(name));
  const row = (name, title) => [title, ...discs.map(({ fields }) => fields.get(name))];
  const rows = [
    ...Object.entries(valueNames).map(([name, title]) => row(name, title)),
    ...otherNames.map((name) => row(name, withBreaks(name))),
  ];
  return [
    ...discs.map((disc, i) => paragraph([`Disc ${i + 2} `, stateBadge(disc)])),
    table("Values", ["Value", ...discColumns], rows),
    element(
      "div",
      { className: "columns" },
      discs.map((disc, i) => element("div", {}, slotTables(disc, `Disc ${i + 2}`))),
    ),
    paragraph("The chest does not say which of its slots are in use.", "kind"),
  ];
}

/** The flags whose names contain the text. */
export function flagTables(flags, text) {
  const fits = ({ name }) => name.toLowerCase().includes(text.toLowerCase());
  return [
    ["Game flags", flags.game],
    ["World flags", flags.world],
  ].map(([title, all]) => {
    const found = all.filter(fits);
    const rows = found.map(({ name, values }) => [withBreaks(name), ...values]);
    return table(`${title}: ${found.length} of ${all.length}`, ["Flag", ...discColumns], rows);
  });
}
