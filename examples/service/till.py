"""A till in Python: python3 till.py ORDER, with the service's address in MIRVANE_SERVICE"""
import json
import os
import sys
import time
import urllib.error
import urllib.request

SERVICE = os.environ.get("MIRVANE_SERVICE", "http://127.0.0.1:8200")
HEADERS = {"Prefer": "wait=30", "Content-Type": "application/json"}
if "MIRVANE_TOKEN" in os.environ:
    HEADERS["Authorization"] = "Bearer " + os.environ["MIRVANE_TOKEN"]


def put(path, content):
    request = urllib.request.Request(SERVICE + path, json.dumps(content).encode(), HEADERS, method="PUT")
    try:
        return json.load(urllib.request.urlopen(request, timeout=60))
    except urllib.error.HTTPError as error:
        if error.code < 500 and error.code != 429:
            raise SystemExit(error.read().decode())
    except OSError:
        pass
    return {"state": "no answer"}


# The order's number is the id: however often this is asked, the receipt is printed once.
receipt = {
    "lines": [{"description": "Ελληνικός καφές", "price": 2.50, "vat": 24},
              {"description": "Κουλούρι", "price": 0.80, "quantity": 2, "vat": 13}],
    "payments": [{"type": "cash"}],
}
answer = put("/v1/receipts/" + sys.argv[1], receipt)
while answer["state"] in ("queued", "printing", "waiting", "no answer"):
    time.sleep(1)
    answer = put("/v1/receipts/" + sys.argv[1], receipt)
if answer["state"] != "committed":
    raise SystemExit(json.dumps(answer, ensure_ascii=False))
print(f"receipt {answer['booked']['number']}, total {answer['booked']['total']}")
