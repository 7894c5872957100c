
export default class VantrelMarks {
    enable() {
        this._service = new Service();
    }

    disable() {
        this._service.destroy();
        this._service = null;
    }
}
