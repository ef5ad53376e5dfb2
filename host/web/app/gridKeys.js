// The keys that move from cell to cell (ARIA Authoring Practices, grid pattern). Pure.

// What becomes of `at` {row, column, page} when a key is pressed, or nothing when the key does not move. `lastRow` is
// that of the page.
export function moved({ key, ctrlKey }, { row, column, page }, { lastRow, lastColumn, lastPage }) {
    switch (key) {
        case "ArrowDown":
            return { row: Math.min(row + 1, lastRow) };
        case "ArrowUp":
            return { row: Math.max(row - 1, 0) };
        case "ArrowRight":
            return { column: Math.min(column + 1, lastColumn) };
        case "ArrowLeft":
            return { column: Math.max(column - 1, 0) };
        case "Home":
            return ctrlKey ? { row: 0, column: 0 } : { column: 0 };
        case "End":
            return ctrlKey ? { row: lastRow, column: lastColumn } : { column: lastColumn };
        case "PageDown":
            return { page: Math.min(page + 1, lastPage), row: 0 };
        case "PageUp":
            return { page: Math.max(page - 1, 0), row: 0 };
        default:
            return undefined;
    }
}
