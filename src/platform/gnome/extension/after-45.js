
export default class VantrelMarks {
    constructor({uuid}) {
        this._uuid = uuid;
    }

    enable() {
        this._service = new Service(this._uuid);
    }

    disable() {
        this._service.destroy();
        this._service = null;
    }
}
