"""A small till: connect, sell, handle refusals, pay, disconnect. Not run here.

    py -m pip install pywin32
    py till.py 127.0.0.1:9100
"""

import sys

import pythoncom
import pywintypes
from win32com.client import VARIANT
from win32com.client.dynamic import DumbDispatch


class Refused(Exception):
    """The register refused (result > 0), or did not answer (result < 0)."""

    def __init__(self, operation, result, text):
        super().__init__(f"{operation}: {result} {text}")
        self.result = result


def by_reference(kind, value):
    """A variable that the component can write to; its result is in `value`."""
    return VARIANT(pythoncom.VT_BYREF | kind, value)


class Register:
    """Connected as long as the `with` block runs."""

    OPERATIONS = (
        "Connect_",
        "DisConnect_",
        "ItemSale",
        "Payment",
        "commentPrinterPrint",
        "getSerialNumber",
        "transactionTotals",
    )

    def __init__(self, port):
        self.port = port
        self.module = DumbDispatch("VarlenFiscalQ7734.fiscalTrevikModule")
        # Otherwise pywin32 would first try each name as a property.
        self.module._FlagAsMethod(*self.OPERATIONS)

    def __enter__(self):
        self.operate("Connect_", self.port)
        return self

    def __exit__(self, *_):
        # A closed port is reported as 1, the value of the system call that closed it.
        self.operate("DisConnect_", self.port, success=1)

    def operate(self, name, *given, success=0):
        """Every operation has Result, Exresult and SupressError_ behind its own parameters."""
        result = by_reference(pythoncom.VT_I2, 0)
        text = by_reference(pythoncom.VT_BSTR, "")
        getattr(self.module, name)(*given, result, text, True)
        if result.value != success:
            raise Refused(name, result.value, text.value)

    def serial_number(self):
        number = by_reference(pythoncom.VT_BSTR, "")
        self.operate("getSerialNumber", number)
        return number.value

    def sell(self, description, quantity, price, vat_rate):
        print(f"selling {quantity} x {description}")
        self.operate("ItemSale", description, quantity, price, vat_rate, 1)

    def total(self):
        totals = DumbDispatch("VarlenFiscalQ7734.clsTransTotal")
        self.operate("transactionTotals", totals)
        return totals.receiptTotalAmt

    def pay(self, kind, description, amount):
        print(f"paying {amount:.2f} {description}")
        self.operate("Payment", kind, description, amount, 0, 0)
        if self.module.StatusRead.isTransactionOpen:
            raise RuntimeError("the receipt is not fully paid")


def expect(failure, action, *given):
    try:
        action(*given)
    except failure as error:
        print(f"  {type(error).__name__}: {error}")
    else:
        raise AssertionError("this was expected to fail")


def main():
    with Register(sys.argv[1] if len(sys.argv) > 1 else "127.0.0.1:9100") as register:
        print("register", register.serial_number())
        register.sell("Καφές ελληνικός", 2, 1.80, 24)
        # The register has no VAT rate of 17 %.
        expect(Refused, register.sell, "Τυρόπιτα", 1, 2.20, 17)
        register.sell("Τυρόπιτα", 1, 2.20, 13)
        # The call itself is invalid: nothing was sent. error.hresult is DISP_E_TYPEMISMATCH.
        expect(pywintypes.com_error, register.sell, "Νερό", "μισό", 0.50, 13)
        register.sell("Νερό", "0,5", 0.50, 13)
        register.operate("commentPrinterPrint", "Σας ευχαριστούμε!", 1)
        print(f"total {register.total():.2f}")
        # Change cannot be given on a card.
        expect(Refused, register.pay, 2, "ΚΑΡΤΑ", 10)
        register.pay(1, "ΜΕΤΡΗΤΑ", 10)
    print("ok")


if __name__ == "__main__":
    main()
