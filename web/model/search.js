// Which rows of a long list are shown.

export const rowLimit = 300; // more rows make the page slow, and nobody reads them

/**
 * What has a name that contains the text, in any case of letters: how many there are, and the first of them.
 *
 * @template {{name: string}} Row
 * @param {Row[]} rows
 * @param {string} text
 */
export function findRows(rows, text) {
  const wanted = text.toLowerCase();
  const found = wanted === "" ? rows : rows.filter(({ name }) => name.toLowerCase().includes(wanted));
  return { count: found.length, rows: found.slice(0, rowLimit) };
}
