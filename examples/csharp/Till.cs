// A small till, late bound: connect, sell, handle refusals, pay, disconnect.
//
//   C:\Windows\Microsoft.NET\Framework\v4.0.30319\csc.exe /codepage:65001 /platform:x86 Till.cs
//   .\Till.exe 127.0.0.1:9100
using System;
using System.Reflection;
using System.Runtime.InteropServices;

/// An automation object, called by name. Arguments at the positions `byReference` come back changed.
sealed class Automation : IDisposable
{
    readonly object target;

    public Automation(string name) : this(Activator.CreateInstance(Type.GetTypeFromProgID(name, true))) { }
    public Automation(object target) { this.target = target; }
    public object Target { get { return target; } }

    public void Call(string name, object[] arguments, params int[] byReference)
    {
        var modifier = new ParameterModifier(arguments.Length);
        foreach (var position in byReference) modifier[position] = true;
        target.GetType().InvokeMember(name, BindingFlags.InvokeMethod, null, target, arguments,
            new[] { modifier }, null, null);
    }

    public object Get(string name)
    {
        return target.GetType().InvokeMember(name, BindingFlags.GetProperty, null, target, null);
    }

    public void Dispose() { Marshal.ReleaseComObject(target); }
}

sealed class RegisterException : Exception
{
    public readonly short Result;
    public RegisterException(string operation, short result, string text)
        : base(operation + ": " + result + " " + text) { Result = result; }
}

/// The register, each operation a method. A refusal is a RegisterException.
sealed class Register : IDisposable
{
    readonly Automation module = new Automation("VarlenFiscalQ7734.fiscalTrevikModule");
    readonly string port;

    public Register(string port)
    {
        this.port = port;
        Operate("Connect_", port);
    }

    public string SerialNumber { get { return (string)Operate("getSerialNumber", "")[0]; } }

    public void Sell(string description, object quantity, double price, double vatRate)
    {
        Console.WriteLine("selling {0} x {1}", quantity, description);
        Operate("ItemSale", description, quantity, price, vatRate, (short)1);
    }

    public void Print(string comment) { Operate("commentPrinterPrint", comment, (short)1); }

    public double Total
    {
        get
        {
            using (var totals = new Automation("VarlenFiscalQ7734.clsTransTotal"))
            {
                Operate("transactionTotals", totals.Target);
                return (double)totals.Get("receiptTotalAmt");
            }
        }
    }

    public void Pay(short kind, string description, double amount)
    {
        Console.WriteLine("paying {0:F2} {1}", amount, description);
        Operate("Payment", kind, description, amount, (short)0, (short)0);
        using (var status = new Automation(module.Get("StatusRead")))
            if ((bool)status.Get("isTransactionOpen")) throw new InvalidOperationException("the receipt is not fully paid");
    }

    public void Dispose()
    {
        var arguments = new object[] { port, (short)0, "", true };
        module.Call("DisConnect_", arguments, 1, 2);
        module.Dispose();
        // A closed port is reported as 1, the value of the system call that closed it.
        if ((short)arguments[1] != 1) throw new RegisterException("DisConnect_", (short)arguments[1], "");
    }

    /// Every operation has Result, Exresult and SupressError_ after its own parameters. Returns the arguments as they are
    /// after the call.
    object[] Operate(string name, params object[] given)
    {
        var arguments = new object[given.Length + 3];
        given.CopyTo(arguments, 0);
        int result = given.Length, text = result + 1, silent = text + 1;
        arguments[result] = (short)0;
        arguments[text] = "";
        arguments[silent] = true;
        module.Call(name, arguments, 0, result, text);
        if ((short)arguments[result] != 0)
            throw new RegisterException(name, (short)arguments[result], (string)arguments[text]);
        return arguments;
    }
}

static class Till
{
    static void Expect<Failure>(Action action) where Failure : Exception
    {
        try { action(); }
        catch (Failure failure)
        {
            // InvokeMember wraps the exception.
            var cause = failure.GetBaseException();
            Console.WriteLine("  {0} {1:X8}: {2}", cause.GetType().Name, cause.HResult, cause.Message);
            return;
        }
        throw new InvalidOperationException("this was expected to fail");
    }

    [STAThread]
    static void Main(string[] arguments)
    {
        using (var register = new Register(arguments.Length > 0 ? arguments[0] : "127.0.0.1:9100"))
        {
            Console.WriteLine("register {0}", register.SerialNumber);
            register.Sell("Καφές ελληνικός", 2, 1.80, 24);
            // The register has no VAT rate of 17 %.
            Expect<RegisterException>(() => register.Sell("Τυρόπιτα", 1, 2.20, 17));
            register.Sell("Τυρόπιτα", 1, 2.20, 13);
            // The call itself is invalid: nothing was sent.
            Expect<TargetInvocationException>(() => register.Sell("Νερό", "μισό", 0.50, 13));
            register.Sell("Νερό", "0,5", 0.50, 13);
            register.Print("Σας ευχαριστούμε!");
            Console.WriteLine("total {0:F2}", register.Total);
            // Change cannot be given on a card.
            Expect<RegisterException>(() => register.Pay(2, "ΚΑΡΤΑ", 10));
            register.Pay(1, "ΜΕΤΡΗΤΑ", 10);
        }
        Console.WriteLine("ok");
    }
}
