// Small parts that the views share.
import { Component } from "preact";
import { useState } from "preact/hooks";

/** @import { ComponentChildren } from "preact" */
/** @import { Medium } from "../model/types.js" */

/** @param {number} number */
export function formatNumber(number) {
  return number.toLocaleString("en");
}

/** @param {number} size */
export function formatSize(size) {
  return `${formatNumber(size)} ${size === 1 ? "byte" : "bytes"}`;
}

/** @param {number} count @param {string} one @param {string} more */
export function countOf(count, one, more) {
  return `${formatNumber(count)} ${count === 1 ? one : more}`;
}

/** @param {number} time */
export function formatTime(time) {
  return new Date(time).toLocaleString("en", { dateStyle: "medium", timeStyle: "short" });
}

/** @param {string[]} words */
export function joinWords(words) {
  return words.join(" and ");
}

/**
 * The short titles of a medium's files. A folder that both have is said once.
 *
 * @param {Map<string, string>} titles
 * @param {Pick<Medium, "files">} medium
 */
export function shortTitleOf(titles, { files }) {
  const [first, ...others] = files.map(({ title }) => titles.get(title) ?? title);
  const folder = first.slice(0, first.lastIndexOf("/") + 1);
  return joinWords([first, ...others.map((title) => (title.startsWith(folder) ? title.slice(folder.length) : title))]);
}

/** Brings a heading into view, and the focus to it. @param {string} id */
export function goTo(id) {
  const heading = document.getElementById(id);
  heading?.scrollIntoView({ block: "start" });
  heading?.focus({ preventScroll: true });
}

/** A short title; the whole one is in its tooltip. @param {{titles: Map<string, string>, title: string}} props */
export function Short({ titles, title }) {
  return <span title={title}>{titles.get(title) ?? title}</span>;
}

/**
 * A part of the page that stays as it is until one of the values in `on` changes. If it cannot be shown, it says so, and
 * the other parts go on.
 *
 * @extends {Component<{on: unknown[], children: ComponentChildren}, {error?: Error}>}
 */
export class Part extends Component {
  /** @param {Error} error */
  static getDerivedStateFromError(error) {
    return { error };
  }

  /** @param {{on: unknown[]}} next @param {{error?: Error}} nextState */
  shouldComponentUpdate(next, nextState) {
    const hasChanged = next.on.some((value, i) => value !== this.props.on[i]);
    if (hasChanged && nextState.error) this.setState({ error: undefined }); // tries again
    return hasChanged || nextState.error !== this.state.error;
  }

  render() {
    const { error } = this.state;
    if (!error) return this.props.children;
    return <Warning>This part of the page cannot be shown. The rest works as before. {error.message}</Warning>;
  }
}

/** @param {{children: ComponentChildren}} props */
export function Warning({ children }) {
  return (
    <div role="alert" class="warning">
      {children}
    </div>
  );
}

/** @param {{title?: string, when: string}} props the title of what was chosen, and is no longer as it was */
export function Gone({ title, when }) {
  return (
    <div role="status">
      {title && (
        <p class="warning">
          {title} is no longer as it was when it was {when}. Please choose again.
        </p>
      )}
    </div>
  );
}

/**
 * A name with places where a line may break. A very long one is cut: browsers take seconds to lay it out.
 *
 * @param {{text: string}} props
 */
export function Name({ text }) {
  const limit = 200;
  const shown = text.length > limit ? `${text.slice(0, limit)}… (${formatNumber(text.length)} characters)` : text;
  return shown.split(/(_)|(?=[A-Z][a-z])/).map((part) => (part === "_" ? ["_", <wbr />] : part));
}

/**
 * A table whose rows are arrays of cells; the first cell of a row is its heading. One that may have to be scrolled sideways
 * can have the focus.
 *
 * @param {{caption: ComponentChildren, headings: string[], rows: ComponentChildren[][]}} props
 */
export function Table({ caption, headings, rows }) {
  return (
    <div class="scrolled" {...(headings.length > 3 && { tabIndex: 0, role: "group", "aria-label": "A wide table" })}>
      <table>
        <caption>{caption}</caption>
        <thead>
          <tr>
            {headings.map((heading) => (
              <th key={heading} scope="col">
                {heading}
              </th>
            ))}
          </tr>
        </thead>
        <tbody>
          {rows.map(([first, ...rest], i) => (
            <tr key={i}>
              <th scope="row">{first}</th>
              {rest.map((cell, column) => (
                <td key={column}>{cell}</td>
              ))}
            </tr>
          ))}
        </tbody>
      </table>
    </div>
  );
}

/**
 * A list to choose from. The options are pairs of value and text.
 *
 * @param {{label: string, name?: string, options: string[][], value: string, onChoose: (value: string) => void}} props
 *     `name` is the whole label, if others on the page are the same
 */
export function Choice({ label, name, options, value, onChoose }) {
  return (
    <label class="select">
      {label}
      <select aria-label={name} value={value} onChange={(event) => onChoose(event.currentTarget.value)}>
        {options.map(([key, text]) => (
          <option key={key} value={key}>
            {text}
          </option>
        ))}
      </select>
    </label>
  );
}

/**
 * A part that can be folded. Only the person opens or closes it, once it is there.
 *
 * @param {{summary: string, isOpen: boolean, children: ComponentChildren}} props
 */
export function Fold({ summary, isOpen, children }) {
  const [wasOpen] = useState(isOpen);
  return (
    <details open={wasOpen}>
      <summary>{summary}</summary>
      {children}
    </details>
  );
}

/** @param {{output: string}} props */
export function ProgramOutput({ output }) {
  const limit = 5000; // characters
  return (
    <>
      <p class="kind">The program says:</p>
      <pre>{output.length > limit ? `${output.slice(0, limit)} …` : output}</pre>
    </>
  );
}
