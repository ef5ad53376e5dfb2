// A table that sorts, filters, pages and copies, and in which the arrow keys move from cell to cell.
//
// Properties: `title`; `rows`, another array whenever they change; `rowKey` of a row; `empty`, said when there are no
// rows; `children`, further buttons; and `columns`, each with
//   id, label
//   text(row)     what the cell says and what is copied, without control characters
//   sortKey(row)  text or number; empty texts and Infinity come last
//   lines(row)    optional, the text in pieces that have a line each
//   link(row)     optional address that the cell leads to

import { html, announce, Component, createRef, Icon } from "/app/ui.js";
import { count, counted } from "/app/format.js";
import { copyText } from "/app/clipboard.js";
import { moved } from "/app/gridKeys.js";
import { filtered, sorted, tabSeparated } from "/app/rows.js";
import { TableRow } from "/app/TableRow.js";

const pageRows = 100; // few enough for a page to be drawn in no time, however many rows there are
const typingPauseMs = 500;
const saidMs = 3000;
const cannotCopy = "The browser does not let this page copy.";

function Pages({ page, pages, onTurn }) {
    if (pages <= 1) return null;
    const button = (label, to) => html`<button type="button" aria-disabled=${to < 0 || to >= pages ? "true" : undefined}
        onClick=${() => onTurn(to)}>${label}</button>`;
    return html`<div class="pages" role="group" aria-label="Pages">
        ${button("Previous", page - 1)}
        <span>Page ${count(page + 1)} of ${count(pages)}</span>
        ${button("Next", page + 1)}
    </div>`;
}

export class DataTable extends Component {
    state = { sortBy: this.props.columns[0].id, descending: false, filter: "", page: 0, row: 0, column: 0, said: "" };
    body = createRef();
    #shown = { from: [], rows: [] }; // what `shown` gave last, and of what

    // The rows that pass the filter, in order; worked out only when something has changed.
    get shown() {
        const { rows, columns } = this.props;
        const { sortBy, descending, filter } = this.state;
        const from = [rows, sortBy, descending, filter];
        if (from.some((value, i) => value !== this.#shown.from[i])) {
            const column = columns.find(({ id }) => id === sortBy);
            this.#shown = { from, rows: sorted(filtered(rows, columns, filter), column, descending) };
        }
        return this.#shown.rows;
    }

    get pages() {
        return Math.max(1, Math.ceil(this.shown.length / pageRows));
    }

    get page() {
        return Math.min(this.state.page, this.pages - 1);
    }

    componentWillUnmount() {
        clearTimeout(this.sayCount);
        clearTimeout(this.unsay);
    }

    sort(id) {
        const again = this.state.sortBy === id;
        this.setState({ sortBy: id, descending: again && !this.state.descending, page: 0, row: 0 });
    }

    filter = (event) => {
        this.setState({ filter: event.target.value, page: 0, row: 0 });
        clearTimeout(this.sayCount);
        this.sayCount = setTimeout(() => announce(counted(this.shown.length, "row", "rows")), typingPauseMs);
    };

    turn = (page) => {
        if (page < 0 || page >= this.pages) return;
        this.setState({ page, row: 0 });
        announce(`Page ${page + 1} of ${this.pages}`);
    };

    // For all to see and hear.
    say(text) {
        announce(text);
        this.setState({ said: text });
        clearTimeout(this.unsay);
        this.unsay = setTimeout(() => this.setState({ said: "" }), saidMs);
    }

    copyCell = async (text) => this.say((await copyText(text)) ? "Copied" : cannotCopy);

    copyRows = async () => {
        const rows = this.shown;
        const done = await copyText(tabSeparated(rows, this.props.columns));
        this.say(done ? `Copied ${counted(rows.length, "row", "rows")}` : cannotCopy);
    };

    key = (event) => {
        if (!event.target.closest("tbody")) return;
        if (event.key.toLowerCase() === "c" && !event.altKey && getSelection().isCollapsed) {
            event.preventDefault();
            const row = this.shown[this.page * pageRows + this.state.row];
            this.copyCell(this.props.columns[this.state.column].text(row));
            return;
        }
        const to = moved(event, { ...this.state, page: this.page }, this.lastPlaces());
        if (!to) return;
        event.preventDefault();
        this.setState(to, () => this.focusCell());
    };

    lastPlaces() {
        return {
            lastRow: Math.min(pageRows, this.shown.length - this.page * pageRows) - 1,
            lastColumn: this.props.columns.length - 1,
            lastPage: this.pages - 1,
        };
    }

    focusCell() {
        const cell = this.body.current.rows[this.state.row]?.cells[this.state.column];
        (cell?.querySelector("a") ?? cell)?.focus();
    }

    // The cell that has the focus, however it came there, is where the arrow keys go on.
    follow = (event) => {
        const cell = event.target.closest("td");
        if (cell) this.setState({ row: cell.parentElement.sectionRowIndex, column: cell.cellIndex });
    };

    heading(column) {
        const { sortBy, descending } = this.state;
        const direction = descending ? "descending" : "ascending";
        const isSorted = sortBy === column.id;
        return html`<th role="columnheader" scope="col" key=${column.id} class=${column.id}
            aria-sort=${isSorted ? direction : undefined}>
            <button type="button" onClick=${() => this.sort(column.id)}>
                ${column.label}<span class="arrow" aria-hidden="true">${isSorted && descending ? "↓" : "↑"}</span>
            </button>
        </th>`;
    }

    tools() {
        const { title, rows, children } = this.props;
        const { filter, said } = this.state;
        const all = counted(rows.length, "row", "rows");
        const shown = this.shown.length;
        return html`<div class="tools">
            <input type="search" aria-label="Filter ${title.toLowerCase()}" placeholder="Filter" value=${filter}
                onInput=${this.filter} />
            <span class="quiet">${shown < rows.length ? `${count(shown)} of ${all}` : all}</span>
            <span class="right">
                ${said && html`<span class="quiet" aria-hidden="true">${said}</span>`}
                <button type="button" class="small" onClick=${this.copyRows}><${Icon} name="copy" />Copy all</button>
                ${children}
            </span>
        </div>`;
    }

    rowsOfPage() {
        const { columns, rowKey } = this.props;
        const { row, column } = this.state;
        const first = this.page * pageRows;
        return this.shown.slice(first, first + pageRows).map(
            (each, index) => html`<${TableRow} key=${rowKey(each)} row=${each} columns=${columns}
                position=${first + index} currentColumn=${index === row ? column : undefined}
                onCopy=${this.copyCell} />`,
        );
    }

    table() {
        const { title, columns } = this.props;
        return html`<table role="grid" aria-label=${title} aria-rowcount=${this.shown.length + 1}
                aria-describedby="keys" onKeyDown=${this.key} onFocusIn=${this.follow}>
                <thead role="rowgroup">
                    <tr role="row" aria-rowindex="1">${columns.map((column) => this.heading(column))}</tr>
                </thead>
                <tbody role="rowgroup" ref=${this.body}>${this.rowsOfPage()}</tbody>
            </table>
            <p class="unseen" id="keys">
                The arrow keys move from cell to cell, C copies a cell, Page Up and Page Down turn pages.
            </p>
            <${Pages} page=${this.page} pages=${this.pages} onTurn=${this.turn} />`;
    }

    render({ rows, empty }) {
        if (rows.length === 0) return html`<p class="quiet empty">${empty}</p>`;
        return html`${this.tools()}
        ${this.shown.length > 0 ? this.table() : html`<p class="quiet empty">No row has these words.</p>`}`;
    }
}
