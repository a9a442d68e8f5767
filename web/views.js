// The parts of the page that follow from files and choices. Each function makes elements, and knows no state.
import { floppyRoles, sideNames, sourceRoles } from "./choices.js";
import { button, element, paragraph, select, table } from "./elements.js";
import { formatSize } from "./media.js";

const kindNames = {
  floppy: "Floppy image of 40 tracks",
  memory: "Image of a memory expansion",
  data: "Savegame data file",
  source: "Source of the game, or another text",
  refused: "Cannot be used",
};

const partNames = ["part 1 (flags)", "part 2 (money, lives, items)"];

function describeState({ state, damagedPages }) {
  if (state === "none") return "no savegame";
  if (state === "good") return "savegame, checksums right";
  return `savegame, but ${damagedPages.map((page) => partNames[page]).join(" and ")} damaged: wrong checksum`;
}

function countUsedItems({ inventory }) {
  return inventory.filter(({ isUsed }) => isUsed).length;
}

function describeDisc(disc) {
  if (disc.state === "none") return describeState(disc);
  const { fields } = disc;
  return `${describeState(disc)}; money ${fields.get("money")}, lives ${fields.get("lives")}, items ${countUsedItems(disc)}`;
}

function describeContents(file) {
  if (file.kind === "floppy") return [paragraph(describeDisc(file.disc))];
  if (!file.savegame) return [];
  return file.savegame.discs.map((disc, i) => paragraph(`Disc ${i + 2}: ${describeDisc(disc)}`));
}

export function programOutput(output) {
  return output && element("div", {}, paragraph("The program says:"), element("pre", {}, output));
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

/** A file in the list: what it is, what it holds, what it is used as. */
export function fileItem(file, plan, { onrole, onremove }) {
  const tail = file.image?.tail.length ?? 0;
  return element(
    "li",
    { className: `file ${file.kind}` },
    element("h3", {}, file.path),
    paragraph(`${kindNames[file.kind]}, ${formatSize(file.size)}`, "kind"),
    describeContents(file),
    tail > 0
      ? paragraph(
          `Its last ${tail} bytes are error bytes. The image is used without them, and a new image gets them back ` +
            "unchanged at its end.",
        )
      : "",
    file.problem ? paragraph(file.problem, "warning") : "",
    programOutput(file.output) ?? "",
    roleSelect(file, plan, (role) => onrole(file, role)),
    button(`remove-${file.id}`, "Remove", () => onremove(file), { "aria-label": `Remove ${file.path}` }),
  );
}

/** What is known about the floppy images together: which disc is missing, and that the order is a guess. */
export function discNotes(plan, onswap) {
  const sides = sideNames(plan);
  return plan.pairs.map(({ side, disc2, disc3 }) => {
    const which = plan.pairs.length > 1 ? ` of the ${sides[side]}` : "";
    if (!disc2 || !disc3) {
      const given = disc2 ?? disc3;
      return paragraph(
        `Disc ${disc2 ? 3 : 2}${which} is missing: ${given.path} is one floppy image of two. Please add the other one.`,
        "warning",
      );
    }
    return element(
      "div",
      { className: "note" },
      paragraph(
        `The images do not say which disc they are. By their names, this is a guess: ${disc2.path} is disc 2${which}, ` +
          `${disc3.path} is disc 3.`,
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
  return table(`${into.title} holds a savegame already`, ["", "There now", "After the transfer"], rows);
}

/** The result of a transfer: what was compared, the buttons to save it, and what to do next. */
export function transferResult({ files, from, into }, onsave) {
  const isDataFile = into.key === "data";
  const plural = files.length > 1;
  const proofs = isDataFile
    ? [`Put back into a copy of ${from.title}, the data file gives exactly ${from.title} again.`]
    : [
        "All 1,024 bytes of the savegame are equal: what was put in comes out again.",
        ...files.map(
          ({ name, bytes, oldName, changedBytes }) =>
            `In ${name}, ${changedBytes} of ${formatSize(bytes.length)} differ from ${oldName}.`,
        ),
        `With the old savegame put back, ${plural ? "they equal" : "it equals"} ${into.title}: nothing else has changed.`,
      ];
  const steps = isDataFile
    ? ["Keep the file: it holds the whole savegame, and this page can put it into an image at any time."]
    : [
        "Close the emulator first. When it ends, it may write its own contents over a file.",
        `In the emulator, use the new ${plural ? "images" : "image"} in place of ${into.title}.`,
        `Keep ${into.title} until the game has loaded the savegame.`,
      ];
  const items = (texts) => texts.map((text) => element("li", {}, text));
  return element(
    "div",
    { className: "success" },
    element(
      "h3",
      { id: "result-heading", tabIndex: -1 },
      `Compared and ready to be saved: ${files.map(({ name }) => name).join(" and ")}`,
    ),
    element("ul", {}, items(proofs)),
    element(
      "p",
      { className: "buttons" },
      files.map((file, i) => button(`save-${i}`, `Save ${file.name}`, () => onsave(file), { className: "main" })),
    ),
    element("h4", {}, "What to do next"),
    element("ol", {}, items(steps)),
    paragraph(
      "Not checked: whether the floppy images are disc 2 and disc 3 in this order, and whether the game loads the savegame.",
    ),
  );
}

function itemName({ id, name }) {
  return name === "undefined" ? id : name.replace(/^COLLECTABLE_/, "");
}

function slotTable(caption, slots) {
  return table(
    caption,
    ["Slot", "Item", "Count"],
    slots.map((slot) => [slot.slot, itemName(slot), slot.count]),
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
      element("summary", {}, `${unused.length} inventory slots that are not in use`),
      slotTable(`${title}: not in use`, unused),
    ),
    slotTable(`${title}: chest`, disc.chest),
  ];
}

/** The values of both discs side by side, and the items of each. */
export function savegameReport({ discs }) {
  const names = [...discs[0].fields.keys()].filter((name) => !/^(validsavegame|checkSum)/.test(name));
  return [
    table(
      "Values",
      ["", "Disc 2", "Disc 3"],
      [
        ["savegame", ...discs.map(describeState)],
        ...names.map((name) => [name, ...discs.map(({ fields }) => fields.get(name))]),
      ],
    ),
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
    const rows = found.map(({ name, values }) => [name, ...values]);
    return table(`${title}: ${found.length} of ${all.length}`, ["", "Disc 2", "Disc 3"], rows);
  });
}
