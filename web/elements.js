// Makes elements. Text from files becomes text nodes, never markup.

/** An element with these properties ("role" and "aria-..." are attributes) and children: elements, texts, or nothing. */
export function element(tag, properties = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name === "role" || name.startsWith("aria-")) made.setAttribute(name, value);
    else made[name] = value;
  }
  made.append(...children.flat(2).filter((child) => child !== undefined && child !== ""));
  return made;
}

export function paragraph(text, className = "") {
  return element("p", { className }, text);
}

/** A name with places where a line may break. */
export function withBreaks(name) {
  return name.split(/(?<=_)|(?<=[a-z])(?=[A-Z])/).flatMap((part) => [part, element("wbr")]);
}

export function button(id, text, onclick, properties = {}) {
  return element("button", { type: "button", id, onclick, ...properties }, text);
}

/** A table whose rows are arrays of texts or elements; the first cell of a row is its heading. */
export function table(caption, headings, rows) {
  const heading = (scope) => (content) => element("th", { scope }, content);
  const body = rows.map(([first, ...rest]) =>
    element(
      "tr",
      {},
      heading("row")(first),
      rest.map((content) => element("td", {}, content)),
    ),
  );
  return element(
    "div",
    { className: "scrolled" },
    element(
      "table",
      {},
      element("caption", {}, caption),
      element("thead", {}, element("tr", {}, headings.map(heading("col")))),
      element("tbody", {}, body),
    ),
  );
}

/** A group of radio buttons; each option has a key, a title, and a refusal if it cannot be chosen. */
export function radioGroup(name, legend, options, chosenKey, onchange) {
  const rows = options.map(({ key, title, refusal }, i) => {
    const input = element("input", {
      type: "radio",
      id: `${name}-${i}`,
      name,
      checked: key === chosenKey,
      disabled: refusal !== undefined,
      onchange: () => onchange(key),
    });
    return element("label", { className: "option" }, input, element("span", {}, title, refusal && ` – ${refusal}`));
  });
  return element("fieldset", {}, element("legend", {}, legend), rows);
}

/** A labelled list to choose from; the options are pairs of value and text. */
export function select(id, label, options, value, onchange, properties = {}) {
  const list = element(
    "select",
    { id, onchange: (event) => onchange(event.target.value), ...properties },
    options.map(([key, text]) => element("option", { value: key, selected: key === value }, text)),
  );
  return element("label", { className: "select" }, label, list);
}
