// The parts of the page that follow from files and choices. Each function makes elements, and knows no state.
import { floppyRoles, sideNames, sourceRoles } from "./choices.js";
import { button, element, paragraph, select, table, withBreaks } from "./elements.js";
import { formatNumber, formatSize } from "./media.js";
import { pageNames } from "./report.js";

const kindNames = {
  floppy: "Floppy image of 40 tracks",
  memory: "Image of a memory expansion",
  data: "Savegame data file",
  source: "Source of the game, or another text",
  refused: "Cannot be used",
};

const discColumns = ["Disc\u00a02", "Disc\u00a03"];

function describeState({ state, damagedPages }) {
  if (state === "none") return "no savegame";
  if (state === "good") return "savegame, undamaged (checksums right)";
  return `savegame, ${damagedPages.map((page) => pageNames[page]).join(" and ")} damaged (wrong checksum)`;
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

/** What the program says about the state of both discs. */
export function stateOutput({ discs }) {
  return programOutput(discs.map(({ stateLines }, i) => [`Disc ${i + 2}`, ...stateLines].join("\n")).join("\n"));
}

function roleSelect(file, plan, onrole) {
  const sides = sideNames(plan);
  const texts = {
    floppy: floppyRoles.map((role) => [role, `disc ${role.slice(-1)} of the ${sides[role.slice(0, -1)]}`]),
    source: sourceRoles.map((role) => [role, role === "included" ? "included file, in generated/" : role]),
  };
  const options = texts[file.kind];
  if (!options) return undefined;
  return select(`role-${file.id}`, "Used as", [...options, ["", "not used"]], plan.roles.get(file.id), onrole, {
    "aria-label": `Used as: ${file.title}`,
  });
}

function removeButton(file, onremove) {
  return button(`remove-${file.id}`, "Remove", () => onremove(file), { "aria-label": `Remove ${file.title}` });
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
    element("div", { className: "file-head" }, element("h3", {}, file.title), removeButton(file, onremove)),
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
  const summary = element(
    "summary",
    { id: "sources-summary" },
    `Sources of the game, and other texts: ${sources.length}`,
  );
  const folded = element("details", { id: "sources" }, summary, element("ul", { className: "files" }, sources));
  return [
    element("ul", { className: "files" }, media),
    sources.length > 0 ? folded : "",
    files.length > 1 ? button("remove-all", "Remove all files", actions.onremoveall) : "",
  ];
}

const groundsInWords = {
  chosen: "As you have chosen",
  names: "This is a guess from their names",
  order: "Nor do their names, so this may be wrong",
};

/** What is known about the floppy images together: which disc is missing, and on what grounds they have their order. */
export function discNotes(files, plan, onswap) {
  const sides = sideNames(plan);
  const notes = plan.pairs.map(({ side, disc2, disc3, isSame, grounds }) => {
    const which = plan.pairs.length > 1 ? ` of the ${sides[side]}` : "";
    if (!disc2 || !disc3) {
      return paragraph(
        `Disc ${disc2 ? 3 : 2}${which} is missing: please add it. (The images do not say which disc they are. If ` +
          `${(disc2 ?? disc3).title} is not disc ${disc2 ? 2 : 3}, choose above what it is used as.)`,
        "warning",
      );
    }
    if (isSame) {
      const text = `${disc2.title} and ${disc3.title} have the same contents: one of them is the wrong disc. Nothing can be moved with them.`;
      return paragraph(text, "warning");
    }
    return element(
      "div",
      { className: grounds === "order" ? "warning" : "note" },
      paragraph(
        `The images do not say which disc they are. ${groundsInWords[grounds]}: ${disc2.title} is disc 2${which}, and ` +
          `${disc3.title} is disc 3.`,
      ),
      button(`swap-${side}`, `Swap disc 2 and disc 3${which}`, () => onswap(disc2, disc3)),
    );
  });
  const isUnused = files.some(({ kind }) => kind === "floppy") && plan.pairs.length === 0;
  return isUnused
    ? [paragraph("Please add the images of disc 2 and disc 3: these have the savegame.", "warning")]
    : notes;
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
  return table(`In the copy of ${into.title}, this savegame is replaced`, ["Value", "There now", "In the copy"], rows);
}

/** What the comparisons of a transfer have shown. */
function proofsOf({ files, from, into }) {
  if (into.key === "data") {
    return [
      `Compared: in a copy of ${from.title} that held another savegame, this file restored the savegame completely.`,
    ];
  }
  const changes = files.map(({ name, bytes, changedBytes, tailSize }, i) => {
    const oldTitle = into.files[i].title;
    const change = `${formatNumber(changedBytes)} of ${formatSize(bytes.length)} changed between ${oldTitle} and ${name}.`;
    return tailSize > 0
      ? `${change} Its last ${tailSize} bytes are the error bytes of ${oldTitle}, unchanged.`
      : change;
  });
  return [
    `Compared: what comes out of it is the savegame of ${from.title}. All 1,024 bytes are equal.`,
    ...changes,
    `Compared: with the old contents put back in its place, the copy equals ${into.title}. Nothing else has changed.`,
  ];
}

function nextSteps({ files, into }) {
  if (into.key === "data") {
    return ["Save the file.", "Keep it as a backup. Given to this page, it can be put into an image at any time."];
  }
  return [
    "Close the emulator first. When it ends, it may write its own contents over a file.",
    files.length > 1 ? "Save both new images: the game needs both." : "Save the new image.",
    `In the emulator, use the new ${files.length > 1 ? "images" : "image"} in place of ${into.title}.`,
    `Keep ${into.title} until the game has loaded the savegame.`,
  ];
}

/** What a transfer has made: what was compared, the buttons to save it, and what to do next. */
export function transferResult(made, onsave) {
  const names = made.files.map(({ name }) => name).join(" and ");
  const hasFloppies = [made.from, made.into].some(({ medium }) => medium?.command === "d64");
  const order = hasFloppies ? "whether disc 2 and disc 3 are in the right order, and " : "";
  const items = (texts) => texts.map((text) => element("li", {}, text));
  return element(
    "div",
    { className: "success" },
    element("h3", { id: "result-heading", tabIndex: -1 }, `Ready to be saved: ${names}`),
    made.concerns.map((concern) => paragraph(`As before: ${concern}`, "warning")),
    element("ul", {}, items(proofsOf(made))),
    paragraph(`Not checked: ${order}whether the game loads it.`),
    element(
      "p",
      { className: "buttons" },
      made.files.map((file, i) => [
        button(`save-${i}`, `Save ${file.name}`, () => onsave(file), { className: "main" }),
        file.isSaved ? element("span", { className: "saved" }, "✓ sent to your downloads") : "",
      ]),
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

function slotTables(disc, number) {
  if (disc.state === "none") return [];
  const title = `Disc ${number}`;
  const used = disc.inventory.filter(({ isUsed }) => isUsed);
  const unused = disc.inventory.filter(({ isUsed }) => !isUsed);
  const summary = `Inventory slots that are not in use: ${unused.length}`;
  return [
    slotTable(`${title}: inventory`, used),
    element(
      "details",
      { id: `unused-${number}` },
      element("summary", { id: `unused-summary-${number}` }, summary),
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

/** The values of both discs side by side, and the items of each. A disc without a savegame has none. */
export function savegameReport({ discs }) {
  const badges = discs.map((disc, i) => paragraph([`Disc ${i + 2} `, stateBadge(disc)]));
  if (discs.every(({ state }) => state === "none")) return badges;
  const hasOtherPlace = (name) => shownAsState.includes(name) || name in valueNames;
  const otherNames = [...discs[0].fields.keys()].filter((name) => !hasOtherPlace(name));
  const row = (name, title) => [
    title,
    ...discs.map(({ state, fields }) => (state === "none" ? "–" : fields.get(name))),
  ];
  const rows = [
    ...Object.entries(valueNames).map(([name, title]) => row(name, title)),
    ...otherNames.map((name) => row(name, withBreaks(name))),
  ];
  return [
    ...badges,
    table("Values", ["Value", ...discColumns], rows),
    element(
      "div",
      { className: "columns" },
      discs.map((disc, i) => element("div", {}, slotTables(disc, i + 2))),
    ),
    paragraph("The chest does not say which of its slots are in use.", "kind"),
  ];
}

/** A table of flags, and a function that shows only those whose names contain a text. */
function flagTable(title, flags) {
  const rows = flags.map(({ name, values }) => [withBreaks(name), ...values]);
  const made = table(title, ["Flag", ...discColumns], rows);
  const caption = made.querySelector("caption");
  const shownRows = made.querySelectorAll("tbody tr");
  const filter = (text) => {
    const isShown = flags.map(({ name }) => name.toLowerCase().includes(text.toLowerCase()));
    isShown.forEach((shown, i) => (shownRows[i].hidden = !shown));
    caption.textContent = `${title}: ${isShown.filter(Boolean).length} of ${flags.length}`;
  };
  return { made, filter };
}

/** All flags, with a field to search them, which begins with the text. */
export function flagTables(flags, text, onsearch) {
  const tables = [flagTable("Game flags", flags.game), flagTable("World flags", flags.world)];
  const search = (wanted) => tables.forEach(({ filter }) => filter(wanted));
  const oninput = ({ target }) => {
    search(target.value);
    onsearch(target.value);
  };
  const field = element("input", { type: "search", id: "flag-search", value: text, oninput });
  search(text);
  return [element("label", { className: "select" }, "Search the flags", field), ...tables.map(({ made }) => made)];
}
