// A row of a table, and its cells.

import { html, Component, Icon } from "/app/ui.js";
import { shortened } from "/app/format.js";

function Content({ column, row, tabindex }) {
    const link = column.link?.(row);
    if (link) {
        return html`<a href=${link} target="_blank" rel="noopener noreferrer" tabindex=${tabindex}>
            ${column.text(row)}<${Icon} name="open" />
        </a>`;
    }
    const lines = column.lines?.(row) ?? [column.text(row)];
    return lines.map((line) => html`<bdi>${shortened(line)}</bdi>`);
}

// The button is for the mouse; with the keyboard one presses C.
function CopyButton({ onClick }) {
    return html`<button type="button" class="copy" tabindex="-1" aria-hidden="true" title="Copy" onClick=${onClick}>
        <${Icon} name="copy" />
    </button>`;
}

// Of all cells of a table only the current one is among the tab stops of the page.
function Cell({ column, row, isCurrent, onCopy }) {
    const tabindex = isCurrent ? 0 : -1;
    const text = column.text(row);
    return html`<td role="gridcell" class=${column.id} data-label=${column.label}
        tabindex=${column.link?.(row) ? undefined : tabindex}>
        <${Content} column=${column} row=${row} tabindex=${tabindex} />
        ${text && html`<${CopyButton} onClick=${() => onCopy(text)} />`}
    </td>`;
}

// Rows that stayed as they are need not be drawn again.
export class TableRow extends Component {
    shouldComponentUpdate(next) {
        return ["row", "columns", "position", "currentColumn"].some((name) => next[name] !== this.props[name]);
    }

    render({ row, columns, position, currentColumn, onCopy }) {
        return html`<tr role="row" aria-rowindex=${position + 2}>
            ${columns.map(
                (column, index) => html`<${Cell} key=${column.id} column=${column} row=${row}
                    isCurrent=${index === currentColumn} onCopy=${onCopy} />`,
            )}
        </tr>`;
    }
}
