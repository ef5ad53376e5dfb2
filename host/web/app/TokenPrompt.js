// Asks for the access token of a server that demands one.

import { html, Component, Field } from "/app/ui.js";

export class TokenPrompt extends Component {
    state = { token: "" };

    componentDidMount() {
        document.getElementById("token").focus();
    }

    submit = (event) => {
        event.preventDefault();
        const token = this.state.token.trim();
        if (!token) return;
        this.setState({ token: "" });
        this.props.model.useToken(token);
    };

    render({ model }) {
        return html`<main class="single"><section class="card" aria-labelledby="token-title">
            <h2 id="token-title">Access token</h2>
            <p>This server answers only to those who have its token: the text in the file that it was started with.
                It is kept until you close this tab.</p>
            <form onSubmit=${this.submit} novalidate>
                <${Field} id="token" label="Token" type="password" autocomplete="off" value=${this.state.token}
                    error=${model.tokenRefused && "The server does not accept this token."}
                    onInput=${(event) => this.setState({ token: event.target.value })} />
                <div class="buttons"><button class="primary">Open</button></div>
            </form>
        </section></main>`;
    }
}
