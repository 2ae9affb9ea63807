

def connect():
    try:
        import DaVinciResolveScript
        return DaVinciResolveScript.scriptapp("Resolve")
    except Exception:
        return None


def main_external(req_path, req_id):
    resolve = connect()
    if not resolve:
        print(json.dumps({"ok": False, "code": "no-external"}), flush=True)
        return
    with open(req_path, encoding="utf-8") as file:
        req = json.load(file)
    try:
        if req["id"] == req_id:
            result = run(resolve, req)
        else:
            result = failed("Another request came in between. Insert again.")
    except Exception as error:
        result = failed("Resolve error: %s" % error)
    print(json.dumps(result), flush=True)


main_external(sys.argv[1], sys.argv[2])
