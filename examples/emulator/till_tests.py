"""A till's own tests against the emulator: py till_tests.py, with its address in MIRVANE_WEB"""
import json
import os
import unittest
import urllib.request

WEB = os.environ.get("MIRVANE_WEB", "http://127.0.0.1:8100") + "/api/v1"


def emulator(method, path, body=None):
    data = None if body is None else json.dumps(body).encode()
    with urllib.request.urlopen(urllib.request.Request(WEB + path, data, method=method), timeout=60) as answer:
        return json.loads(answer.read() or "null")


# The till under test. Yours talks to the register through its component; this one sends the register's own commands.
def till(command):
    return emulator("POST", "/commands", {"command": command})


def sell(name, price):
    till(f"3/S//{name}///1.000/{price}/1/24.00/1/")


class TillTests(unittest.TestCase):
    def setUp(self):
        emulator("POST", "/reset")

    def verify(self, **what):
        emulator("POST", "/verify?wait=5", what)

    def test_a_coffee_is_paid_in_cash(self):
        sell("Coffee", "1.80")
        till("5/1///5.00///")
        till("O/1/")
        self.assertEqual(emulator("GET", "/receipts/last?wait=5")["change"], 3.2)
        self.verify(sold={"description": "Coffee", "price": 1.8}, times=1)

    def test_a_card_is_declined_and_the_receipt_is_paid_in_cash(self):
        emulator("PATCH", "/card", {"next": [156], "seconds": 0})
        sell("Lunch", "12.50")
        till("5/2///12.50/1/1/")
        self.assertEqual(till("?/")["code"], 156)
        till("5/1///0.00///")
        till("O/1/")
        self.verify(paid={"tender": "card"}, times=0)
        self.verify(paid={"tender": "cash"}, times=1)


unittest.main()
