// Rows of a table: order, filter, and their text for a spreadsheet. Pure functions.

// 10.0.0.9 comes before 10.0.0.10. What is no address comes last.
export function addressNumber(ip) {
    const parts = /^(\d{1,3})\.(\d{1,3})\.(\d{1,3})\.(\d{1,3})$/.exec(ip);
    if (!parts || parts.slice(1).some((part) => Number(part) > 255)) return Infinity;
    return parts.slice(1).reduce((number, part) => number * 256 + Number(part), 0);
}

// The page of a device, or nothing if `ip` is no address.
export const pageOf = (ip) => (addressNumber(ip) === Infinity ? undefined : `http://${ip}/`);

const longestNumber = 20; // digits, of those that compare as numbers

// A text such that comparing code units puts "Jet 9" before "jet 10" and "Árpád" before "Zoe". Ten thousand of these
// are sorted several times as fast as with a collator.
function orderKey(text) {
    const plain = text.normalize("NFD").replace(/\p{M}/gu, "").toLowerCase();
    return plain.replace(/\d+/g, (digits) => digits.padStart(longestNumber, "0"));
}

// A sorted copy; what a column leaves empty comes last in either direction, and equals keep their order.
export function sorted(rows, column, descending) {
    const keyed = rows.map((row) => {
        const key = column.sortKey(row);
        return { row, key: typeof key === "string" ? orderKey(key) : key, empty: key === "" || key === Infinity };
    });
    const above = descending ? -1 : 1;
    keyed.sort((a, b) => {
        if (a.empty || b.empty) return a.empty - b.empty;
        return a.key === b.key ? 0 : a.key < b.key ? -above : above;
    });
    return keyed.map(({ row }) => row);
}

const wordsOf = (filter) => filter.toLowerCase().split(/\s+/).filter(Boolean);

// The rows that have each word of `filter` in some column.
export function filtered(rows, columns, filter) {
    const words = wordsOf(filter);
    if (words.length === 0) return rows;
    return rows.filter((row) => {
        const text = columns
            .map((column) => column.text(row))
            .join("\n")
            .toLowerCase();
        return words.every((word) => text.includes(word));
    });
}

// A spreadsheet takes a text that begins like this for a formula.
const formula = /^[=+\-@]/;

// Lines of tab-separated cells below the names of the columns. The columns' texts hold neither tabs nor line ends.
export function tabSeparated(rows, columns) {
    const cell = (text) => (formula.test(text) ? `'${text}` : text);
    const lines = rows.map((row) => columns.map((column) => cell(column.text(row))).join("\t"));
    return [columns.map((column) => column.label).join("\t"), ...lines].join("\n") + "\n";
}
