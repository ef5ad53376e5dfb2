// What all views are built with: templates, announcements to screen readers, and a few elements.
//
// Texts reach the page as text nodes only; nothing here or in any view parses them as HTML.

import { h, render, Component, createRef } from "/vendor/preact.js";
import htm from "/vendor/htm.js";

export const html = htm.bind(h);
export { render, Component, createRef };

// Has a screen reader say `text` when it has finished what it says now.
export function announce(text) {
    const region = document.getElementById("announcements");
    region.textContent = "";
    setTimeout(() => {
        region.textContent = text;
    }, 50);
}

const drawings = {
    printer:
        "M6 8V3h12v5M6 14h12v7H6z" +
        "M6 17H4a1.5 1.5 0 0 1-1.5-1.5v-5A2.5 2.5 0 0 1 5 8h14a2.5 2.5 0 0 1 2.5 2.5v5A1.5 1.5 0 0 1 20 17h-2",
    copy: "M9 9h11v11H9zM15 9V4H4v11h5",
    download: "M12 4v11M7.5 10.5 12 15l4.5-4.5M5 20h14",
    remove: "M6 6l12 12M18 6 6 18",
    add: "M12 5v14M5 12h14",
    open: "M14 4h6v6M20 4l-9 9M10 5H4v15h15v-6",
    again: "M5 12a7 7 0 1 1 2.2 5.1M4.5 20v-4.5H9",
    stop: "M7 7h10v10H7z",
};

export function Icon({ name }) {
    return html`<svg class="icon" viewBox="0 0 24 24" aria-hidden="true" focusable="false">
        <path d=${drawings[name]} />
    </svg>`;
}

// An input with its label, an optional hint and, while `error` is not empty, what is wrong with it. Further properties
// are the input's own.
export function Field({ id, label, hint, error, as = "input", children, ...own }) {
    const described = [hint && `${id}-hint`, error && `${id}-error`].filter(Boolean).join(" ");
    return html`<div class="field">
        <label for=${id}>${label}</label>
        ${hint && html`<p id="${id}-hint" class="hint">${hint}</p>`}
        <${as} id=${id} aria-describedby=${described || undefined} aria-invalid=${error ? "true" : undefined} ...${own}>
            ${children}
        <//>
        ${error && html`<p id="${id}-error" class="field-error">${error}</p>`}
    </div>`;
}

// A modal dialog, open as long as it is there.
export class Dialog extends Component {
    element = createRef();

    componentDidMount() {
        this.element.current.showModal();
    }

    componentWillUnmount() {
        this.element.current.close(); // which gives the focus back
    }

    cancel = (event) => {
        event.preventDefault();
        this.props.onClose();
    };

    render({ title, children }) {
        return html`<dialog ref=${this.element} aria-labelledby="dialog-title" onCancel=${this.cancel}>
            <h2 id="dialog-title">${title}</h2>
            ${children}
        </dialog>`;
    }
}

// Asks before something that cannot be taken back, or that many addresses will notice.
export function Question({ title, text, action, danger, onAnswer }) {
    return html`<${Dialog} title=${title} onClose=${() => onAnswer(false)}>
        <p>${text}</p>
        <div class="buttons">
            <button type="button" onClick=${() => onAnswer(false)}>Cancel</button>
            <button type="button" class=${danger ? "danger" : "primary"} onClick=${() => onAnswer(true)}>
                ${action}
            </button>
        </div>
    <//>`;
}

// Of several panels the one that is chosen; `tabs` are {id, label, count}.
export class Tabs extends Component {
    element = createRef();

    move = (event) => {
        const { tabs, chosen, onChoose } = this.props;
        const at = tabs.findIndex((tab) => tab.id === chosen);
        const to = { ArrowRight: (at + 1) % tabs.length, ArrowLeft: at - 1, Home: 0, End: -1 }[event.key];
        if (to === undefined) return;
        event.preventDefault();
        const tab = tabs.at(to);
        onChoose(tab.id);
        this.element.current.querySelector(`#tab-${tab.id}`).focus();
    };

    render({ label, tabs, chosen, onChoose, children }) {
        return html`<div class="tabs" role="tablist" aria-label=${label} ref=${this.element} onKeyDown=${this.move}>
                ${tabs.map(
                    (tab) => html`<button
                        type="button" role="tab" id="tab-${tab.id}" aria-selected=${String(tab.id === chosen)}
                        aria-controls="panel" tabindex=${tab.id === chosen ? 0 : -1} onClick=${() => onChoose(tab.id)}
                    >${tab.label}${tab.count !== undefined && html` <span class="badge">${tab.count}</span>`}</button>`,
                )}
            </div>
            <div role="tabpanel" id="panel" aria-labelledby="tab-${chosen}" class="panel">${children}</div>`;
    }
}
