// Which rows of a long list are shown.

export const rowLimit = 300; // more rows make the page slow, and nobody reads them

/** Whether a name contains the text, in any case of letters. @param {string} name @param {string} text */
export function isFound(name, text) {
  return text === "" || name.toLowerCase().includes(text.toLowerCase());
}

/**
 * What has a name that contains the text: how many there are, and the first of them.
 *
 * @template {{name: string}} Row
 * @param {Row[]} rows
 * @param {string} text
 */
export function findRows(rows, text) {
  const found = rows.filter(({ name }) => isFound(name, text));
  return { count: found.length, rows: found.slice(0, rowLimit) };
}
