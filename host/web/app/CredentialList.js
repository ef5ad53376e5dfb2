// The credentials of the run to start.

import { html, Component, Icon } from "/app/ui.js";
import { described } from "/app/credentials.js";
import { CredentialDialog } from "/app/CredentialDialog.js";

const standard = () => html`<p class="quiet">v2c with the community “public”, unless you add others.</p>`;

export class CredentialList extends Component {
    state = { adding: false };

    open = () => this.setState({ adding: true });

    close = () => this.setState({ adding: false });

    add = (entry) => {
        this.close();
        this.props.onChange([...this.props.credentials, entry]);
    };

    remove(index) {
        this.props.onChange(this.props.credentials.filter((_, each) => each !== index));
        document.getElementById("add-credential").focus();
    }

    item(entry, index) {
        const words = described(entry);
        return html`<li key=${index}>
            <span>${words}</span>
            <button type="button" class="plain" aria-label="Remove ${words}" onClick=${() => this.remove(index)}>
                <${Icon} name="remove" />
            </button>
        </li>`;
    }

    render({ credentials }, { adding }) {
        return html`<fieldset>
                <legend>Credentials</legend>
                ${credentials.length === 0 && standard()}
                <ul class="credentials">${credentials.map((entry, index) => this.item(entry, index))}</ul>
                <button type="button" id="add-credential" class="small" onClick=${this.open}>
                    <${Icon} name="add" />Add a credential
                </button>
            </fieldset>
            ${adding && html`<${CredentialDialog} onClose=${this.close} onAdd=${this.add} />`}`;
    }
}
